// Encrypts a text by a JSON request and decrypts it again. cpp.h sizes the buffers and tells a
// request that wrote nothing from one that succeeded, which the C functions' results do not.
#include <plx/cpp.h>

#include <cstdio>

namespace {

constexpr char kMembers[] = R"("encryptMode":"CBC","cipherSize":128,"paddingMode":"PKCS5Padding",)"
                            R"("cipherPrefix":"twelve chars","IVPrefix":"")";

void report(const plx::PlainText& plain) {
  switch (plain.status()) {
    case plx::RequestStatus::kDone:
      std::printf("plain text: %s\n", plain.c_str());
      break;
    case plx::RequestStatus::kEmpty:
      std::printf("an empty text\n");
      break;
    case plx::RequestStatus::kNothingWritten:
      std::printf("the cipher refused\n");
      break;
    case plx::RequestStatus::kRefused:
      std::printf("the request is malformed\n");
      break;
  }
}

}  // namespace

int main() {
  char request[512];
  if (plx::sprintf_s(request, R"({%s,"plainText":"good evening"})", kMembers) < 0) return 1;
  const plx::CipherText cipher = plx::encrypt_request(request);
  if (!cipher) return 1;
  std::printf("cipher text: %s\n", cipher.c_str());

  if (plx::sprintf_s(request, R"({%s,"cipherText":"%s"})", kMembers, cipher.c_str()) < 0) return 1;
  report(plx::decrypt_request(request));

  // One digit of the cipher text changed: the padding no longer comes out.
  if (plx::sprintf_s(request, R"({%s,"cipherText":"%.31s0"})", kMembers, cipher.c_str()) < 0)
    return 1;
  report(plx::decrypt_request(request));
  report(plx::decrypt_request(R"({"cipherSize":7})"));
  return 0;
}
