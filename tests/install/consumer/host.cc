// A C++17 host: both classes, the functions that take a std::string, and the header for C++, in a
// program that has exceptions and type information.
#include <plx/cpp.h>
#include <plx/key_store.h>

#include <cstdio>
#include <string>

int main() {
  char text[16];
  if (plx::strcpy_s(text, "plxutility") != EOK) return 1;
  StringArray names;
  if (names.push_back(text) != 1 || std::string(names.entries[0]) != "plxutility") return 2;
  const plx::CipherText cipher =
      plx::encrypt_request(R"({"cipherSize":128,"paddingMode":"PKCS5Padding",)"
                           R"("cipherPrefix":"twelve-chars","plainText":"hello"})");
  if (!cipher || cipher.text().size() != 32) return 3;
  if (getIndexValueSetByName(std::string("pvr_file_key")) != 3) return 4;
  const char* base64 = TRUX::CIPHER::CCipher::Base64(reinterpret_cast<unsigned char*>(text), 3);
  if (base64 == nullptr || std::string(base64) != "cGx4\n") return 5;
  deleteArrayPoint_s(const_cast<char*>(base64));
  const plx::JsonTree tree = plx::parse_json("[{'a': b}]");
  if (plx::find_text(tree.get(), "a") != "b") return 6;
  std::printf("c++ %s\n", PLX_VERSION);
  return 0;
}
