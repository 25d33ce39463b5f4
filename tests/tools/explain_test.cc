// The explanation of a request foretells what the library does: result, output, and its length.
#include "request/explain.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <random>
#include <string>

#include "keys/key_table.h"
#include "keys/provision.h"
#include "request/answer.h"
#include "support/file.h"

namespace plx::tool {
namespace {

// A folder with a stored prefix key of a given length.
class StoredKey {
 public:
  explicit StoredKey(size_t length) {
    EXPECT_NE(mkdtemp(folder_), nullptr);
    paths_ = {std::string(folder_) + "/f", std::string(folder_) + "/w"};
    repointed_ = std::make_unique<RepointedKey>(kPrefixKey, paths_);
    KeyRecipe recipe;
    recipe.work_key.assign(length, 'k');
    provision_key(kPrefixKey, recipe);
  }
  ~StoredKey() {
    unlink(paths_.factor.c_str());
    unlink(paths_.work_key.c_str());
    rmdir(folder_);
  }

 private:
  char folder_[32] = "/tmp/plx-explain-XXXXXX";
  KeyPaths paths_;
  std::unique_ptr<RepointedKey> repointed_;
};

std::string member(const char* name, const std::string& value) {
  return value == "-" ? "" : std::string("\"") + name + "\":" + value + ",";
}

std::string in_quotes(const std::string& text) { return '"' + text + '"'; }

struct Request {
  std::string mode, size, padding, key, iv, text;
  std::string json(const char* text_name) const {
    return "{" + member("encryptMode", mode) + member("cipherSize", size) +
           member("paddingMode", padding) + member("cipherPrefix", key) + member("IVPrefix", iv) +
           member(text_name, text) + "\"end\":'.' }";
  }
};

void expect_foretold(const std::string& request, bool decrypting) {
  SCOPED_TRACE(request);
  const Explanation explanation = explain_request(request, decrypting, false);
  const Answer answer = decrypting ? decrypt_request(request) : encrypt_request(request);
  EXPECT_EQ(explanation.result, answer.result);
  EXPECT_EQ(explanation.produced, answer.produced);
  EXPECT_EQ(explanation.output, answer.text.size());
}

// Values that each rule of a request decides on, good ones more often than bad ones.
const std::string kModes[] = {"\"ECB\"", "\"CBC\"", "\"CBC\"", "\"ECB\"",
                              "-",       "\"\"",    "\"cbc\"", "[1]"};
const std::string kSizes[] = {"128", "192", "256", "\"192abc\"", "128", "256", "192", "64", "-"};
const std::string kPaddings[] = {"\"PKCS5Padding\"", "\"\"", "\"PKCS5Padding\"", "{}", "-",
                                 "\"PKCS7\""};

class Dice {
 public:
  explicit Dice(unsigned seed) : random_(seed) {}
  size_t below(size_t limit) { return random_() % limit; }
  template <size_t kCount>
  const std::string& pick(const std::string (&values)[kCount]) {
    return values[below(kCount)];
  }

 private:
  std::mt19937 random_;
};

Request throw_request(Dice* dice) {
  Request request;
  request.mode = dice->pick(kModes);
  request.size = dice->pick(kSizes);
  request.padding = dice->pick(kPaddings);
  const size_t bits = static_cast<size_t>(atoi(request.size.c_str()));
  const size_t fitting = bits >= 128 ? bits / 8 - 4 : 12;
  const size_t lengths[] = {fitting, fitting, fitting, 11, 0, 40};
  request.key = dice->below(12) == 0 ? "-" : in_quotes(std::string(lengths[dice->below(6)], 'p'));
  request.iv = dice->below(8) == 0 ? "-" : in_quotes(std::string(dice->below(36), 'i'));
  request.text = dice->below(16) == 0 ? "-" : in_quotes(std::string(dice->below(120), 't'));
  return request;
}

TEST(Explain, ForetellsEncryption) {
  const StoredKey stored(20);
  Dice dice(1);
  for (int round = 0; round < 400; ++round) {
    expect_foretold(throw_request(&dice).json("plainText"), false);
  }
}

TEST(Explain, ForetellsDecryption) {
  const StoredKey stored(20);
  Dice dice(2);
  for (int round = 0; round < 300; ++round) {
    Request request = throw_request(&dice);
    const Answer cipher_text = encrypt_request(request.json("plainText"));
    std::string digits(cipher_text.text.begin(), cipher_text.text.end());
    const size_t change = dice.below(6);
    if (change == 0 && !digits.empty()) digits.pop_back();
    if (change == 1 && !digits.empty()) digits[dice.below(digits.size())] = 'z';
    if (change == 2) digits = std::string(dice.below(70), 'a');
    request.text = in_quotes(digits);
    expect_foretold(request.json("cipherText"), true);
  }
}

TEST(Explain, ForetellsLongTextsAndStrangeDocuments) {
  const StoredKey stored(12);
  const std::string good = R"("cipherSize":128,"paddingMode":"PKCS5Padding")";
  const std::string documents[] = {"",
                                   "no braces",
                                   "} {",
                                   "x={" + good + ",\"plainText\":\"abc\" }\n",
                                   "{" + good + ",",
                                   "{\"a\":{" + good + ",\"b\":['x']},\"plainText\":\"abc\" }",
                                   "{" + good + ",\"plainText\":[]}",
                                   "{" + good + ",\"cipherText\":\"" + std::string(1500, 'A') +
                                       "\",\"plainText\":\"" + std::string(1500, 't') + "\" }",
                                   "{" + good + ",\"plainText\":\"a\\u0000b\" }",
                                   "{" + good + "\n}"};
  for (const std::string& document : documents) {
    expect_foretold(document, false);
    expect_foretold(document, true);
  }
}

// Work keys of every length that the completion of a key treats differently.
TEST(Explain, ForetellsStoredKeysOfEveryLength) {
  for (const size_t length : {1, 8, 12, 16, 20, 27, 28, 29, 31, 32, 33, 255}) {
    const StoredKey stored(length);
    for (const char* bits : {"128", "192", "256"}) {
      const Request request = {"-", bits, "\"PKCS5Padding\"", "-", "-", "\"text\""};
      expect_foretold(request.json("plainText"), false);
      const Explanation explanation = explain_request(request.json("plainText"), false, false);
      const bool zero_byte =
          std::any_of(explanation.steps.begin(), explanation.steps.end(), [](const Step& step) {
            return step.finding.find("first byte of the key becomes zero") != std::string::npos;
          });
      EXPECT_EQ(zero_byte, length >= 28 && length < 32) << length;
    }
  }
}

}  // namespace
}  // namespace plx::tool
