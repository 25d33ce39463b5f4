// How a command ends: the exit codes, and the one exception that carries a message to main.
#ifndef PLX_TOOLS_SUPPORT_FAILURE_H
#define PLX_TOOLS_SUPPORT_FAILURE_H

#include <exception>
#include <string>

namespace plx::tool {

enum class Exit {
  kDone = 0,
  kRefused = 1,      // the library refused, or a check found a difference
  kWrongUse = 2,     // the command line or a file given on it cannot be used
  kSystemError = 3,  // the operating system refused
};

// A message says what was wrong; the advice, what to do next. Neither may hold a secret.
class Failure : public std::exception {
 public:
  Failure(Exit exit, std::string message, std::string advice = "");
  const char* what() const noexcept override { return message_.c_str(); }
  Exit exit() const { return exit_; }
  const std::string& advice() const { return advice_; }

 private:
  Exit exit_;
  std::string message_;
  std::string advice_;
};

[[noreturn]] void refuse(std::string message, std::string advice = "");
[[noreturn]] void wrong_use(std::string message, std::string advice = "");
// Appends the text of `error`, an errno value, to the message.
[[noreturn]] void system_failure(const std::string& what, int error, std::string advice = "");

// The same for a message that has been put together already.
[[noreturn]] void system_failure_text(std::string message, std::string advice = "");

// The text of an errno value, lower case as it stands inside a sentence.
std::string error_text(int error);

}  // namespace plx::tool

#endif
