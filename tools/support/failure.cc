#include "support/failure.h"

#include <errno.h>
#include <fmt/core.h>
#include <string.h>

#include <utility>

namespace plx::tool {
namespace {

const char* advice_for(int error) {
  switch (error) {
    case ENOSPC:
    case EDQUOT:
      return "free some space and run the same command again";
    case EROFS:
      return "remount it for writing, or choose another folder";
    case EACCES:
    case EPERM:
      return "check owner and mode, or run as a user who may";
    case ENOENT:
      return "check the path";
    default:
      return "";
  }
}

}  // namespace

Failure::Failure(Exit exit, std::string message, std::string advice)
    : exit_(exit), message_(std::move(message)), advice_(std::move(advice)) {}

void refuse(std::string message, std::string advice) {
  throw Failure(Exit::kRefused, std::move(message), std::move(advice));
}

void wrong_use(std::string message, std::string advice) {
  throw Failure(Exit::kWrongUse, std::move(message), std::move(advice));
}

void system_failure(const std::string& what, int error, std::string advice) {
  if (advice.empty()) advice = advice_for(error);
  throw Failure(Exit::kSystemError, fmt::format("{}: {}", what, error_text(error)),
                std::move(advice));
}

void system_failure_text(std::string message, std::string advice) {
  throw Failure(Exit::kSystemError, std::move(message), std::move(advice));
}

std::string error_text(int error) {
  std::string text = strerror(error);
  if (!text.empty() && text[0] >= 'A' && text[0] <= 'Z') text[0] |= 0x20;
  return text;
}

}  // namespace plx::tool
