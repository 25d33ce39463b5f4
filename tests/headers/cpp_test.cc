// The C++ header over the shared library, as a host uses it: every size by rule is exactly what the
// function asks for, and every outcome of a request is told apart.
#include <gtest/gtest.h>
#include <openssl/evp.h>
#include <plx/cpp.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

constexpr size_t kNotReached = static_cast<size_t>(-1);

// The least capacity at which `accepts` says yes.
template <class Accepts>
size_t least_capacity(size_t up_to, Accepts accepts) {
  for (size_t capacity = 0; capacity <= up_to; ++capacity) {
    if (accepts(capacity)) return capacity;
  }
  return kNotReached;
}

TEST(Sizes, AreTheLeastThatTheFunctionsAccept) {
  const std::vector<unsigned char> bytes(200, 0x5a);
  std::vector<char> text(1024);
  unsigned char key[32] = {1};
  for (unsigned int size = 1; size <= 100; ++size) {
    SCOPED_TRACE(size);
    EXPECT_EQ(plx::base64_text_size(size), least_capacity(1024, [&](size_t capacity) {
                return ::PLX_b64_encode(bytes.data(), size, text.data(),
                                        static_cast<unsigned int>(capacity)) != 0;
              }));
    EXPECT_EQ(plx::base64url_text_size(size), least_capacity(1024, [&](size_t capacity) {
                return ::PLX_base64UrlEncoder(text.data(), static_cast<unsigned int>(capacity),
                                              bytes.data(), size) == 0;
              }));
    EXPECT_EQ(plx::aes_cbc_text_size(size), least_capacity(1024, [&](size_t capacity) {
                return ::PLX_aesCbcEncryptByKey(bytes.data(), static_cast<int>(size), text.data(),
                                                static_cast<int>(capacity), key, AES_CBC_256) > 0;
              }));
    const std::string sealed(text.data());
    std::vector<char> opened(plx::aes_cbc_plain_size(sealed.size()));
    EXPECT_EQ(
        static_cast<int>(size),
        ::PLX_aesCbcDecryptByKey(sealed.data(), static_cast<int>(sealed.size()), opened.data(),
                                 static_cast<int>(opened.size()), key, AES_CBC_256));
  }
}

TEST(Sizes, OfRecordsBlocksAndText) {
  char plain[100] = "";
  tagAes aes = {};
  aes.iKeyBits = 128;
  aes.pszText = plain;
  std::vector<char> out(128);
  for (size_t length = 0; length < 64; ++length) {
    plx::memset_s(plain, 0);
    std::memset(plain, 'x', length);
    EXPECT_EQ(plx::aes_record_output_size(length), least_capacity(128, [&](size_t capacity) {
                return ::PLX_AesEncryByMode(&aes, out.data(), static_cast<int>(capacity)) > 0;
              }));

    Des3Context context;
    const unsigned char key[8] = {1};
    ::PLX_3des_set2keys(&context, key, key);
    std::vector<unsigned char> blocks(128, 0xee);
    ::PLX_3des_encrypt(&context, reinterpret_cast<const unsigned char*>(plain), blocks.data(),
                       static_cast<int>(length));
    size_t written = blocks.size();
    while (written > 0 && blocks[written - 1] == 0xee) --written;
    EXPECT_EQ(plx::des3_output_size(length), written);
  }
  EXPECT_EQ(65u, plx::hex_text_size(32));
  EXPECT_EQ(4u, plx::base64_decode_size(4));
  for (size_t length = 0; length < 20; ++length) {
    const std::string text(length, 'A');
    std::vector<unsigned char> decoded(64);
    const unsigned int got =
        ::PLX_base64UrlDecode(decoded.data(), 64, text.c_str(), static_cast<int>(length));
    if (length % 4 != 1) {
      EXPECT_EQ(plx::base64_bytes_max(length), got) << length;
    }
  }
  // What no buffer can hold.
  for (const size_t huge : {SIZE_MAX, SIZE_MAX - 3}) {
    EXPECT_EQ(0u, plx::base64_text_size(huge));
    EXPECT_EQ(0u, plx::base64url_text_size(huge));
    EXPECT_EQ(0u, plx::hex_text_size(huge));
    EXPECT_EQ(0u, plx::des3_output_size(huge));
    EXPECT_EQ(0u, plx::aes_record_output_size(huge));
    EXPECT_EQ(0u, plx::aes_cbc_text_size(huge));
  }
  EXPECT_EQ(0u, plx::aes_cbc_text_size(1586000000));  // no int holds it
}

std::string request(int bits, const char* padding, const char* member, const std::string& text) {
  return R"({"cipherSize":)" + std::to_string(bits) + R"(,"paddingMode":")" + padding +
         R"(","cipherPrefix":")" + std::string(static_cast<size_t>(bits / 8 - 4), 'k') + R"(",")" +
         member + R"(":")" + text + R"("})";
}

TEST(Requests, ComeBackForEveryLengthAndKeySize) {
  for (const int bits : {128, 192, 256}) {
    for (size_t length = 1; length < 496; length += (length < 70 ? 1 : 43)) {
      SCOPED_TRACE(std::to_string(bits) + " bits, length " + std::to_string(length));
      const std::string text(length, 'p');
      const plx::CipherText cipher =
          plx::encrypt_request(request(bits, "PKCS5Padding", "plainText", text).c_str());
      // With 192 bits the library's own buffer is too small for some lengths.
      if (bits == 192 && length % 48 >= 16 && length % 48 <= 23) {
        EXPECT_EQ(plx::RequestStatus::kNothingWritten, cipher.status());
        EXPECT_TRUE(cipher.text().empty());
        continue;
      }
      ASSERT_TRUE(cipher);
      EXPECT_EQ((length / 16 + 1) * 32, cipher.text().size());
      const plx::PlainText plain = plx::decrypt_request(
          request(bits, "PKCS5Padding", "cipherText", std::string(cipher.text())).c_str());
      ASSERT_TRUE(plain);
      EXPECT_EQ(text, plain.text());
      EXPECT_STREQ(text.c_str(), plain.c_str());
    }
  }
}

TEST(Requests, TellEmptyFromRefusedFromNothingWritten) {
  using Status = plx::RequestStatus;
  const std::string empty_cipher(
      plx::encrypt_request(request(128, "PKCS5Padding", "plainText", "").c_str()).text());
  ASSERT_EQ(32u, empty_cipher.size());
  const struct {
    const char* what;
    bool decrypting;
    std::string request;
    Status wanted;
  } rows[] = {
      {"an empty text, padded", true, request(128, "PKCS5Padding", "cipherText", empty_cipher),
       Status::kEmpty},
      {"no cipher text, no padding", true, request(128, "", "cipherText", ""), Status::kEmpty},
      {"no plain text, no padding", false, request(128, "", "plainText", ""), Status::kEmpty},
      {"no cipher text, padding wanted", true, request(128, "PKCS5Padding", "cipherText", ""),
       Status::kNothingWritten},
      {"another key", true, request(192, "PKCS5Padding", "cipherText", empty_cipher),
       Status::kNothingWritten},
      {"half a block, no padding", false, request(128, "", "plainText", "12345678"),
       Status::kNothingWritten},
      {"no such size", true, request(64, "", "cipherText", "00"), Status::kRefused},
      {"no JSON", true, "{", Status::kRefused},
      {"no JSON, encrypting", false, "{", Status::kRefused},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    if (row.decrypting) {
      const plx::PlainText result = plx::decrypt_request(row.request.c_str());
      EXPECT_EQ(row.wanted, result.status());
      EXPECT_FALSE(result);
      EXPECT_STREQ("", result.c_str());
    } else {
      EXPECT_EQ(row.wanted, plx::encrypt_request(row.request.c_str()).status());
    }
  }
  EXPECT_EQ(Status::kRefused, plx::decrypt_request(nullptr).status());
  EXPECT_EQ(Status::kRefused, plx::encrypt_request(nullptr).status());
  EVP_set_default_properties(nullptr, "provider=none");
  for (const auto& row : rows) {
    if (row.wanted == Status::kNothingWritten) continue;
    SCOPED_TRACE(row.what);
    EXPECT_EQ(Status::kRefused, row.decrypting
                                    ? plx::decrypt_request(row.request.c_str()).status()
                                    : plx::encrypt_request(row.request.c_str()).status());
  }
  EVP_set_default_properties(nullptr, "");
}

// A plain text with zero bytes, and one of them the last: both come back whole.
TEST(Requests, KeepZeroBytesOfThePlainText) {
  const std::string all_zero(32, '0');
  const std::string one = std::string(
      plx::encrypt_request(request(128, "", "plainText", "0123456789abcdef").c_str()).text());
  const plx::PlainText mixed =
      plx::decrypt_request(request(128, "", "cipherText", one + all_zero).c_str());
  ASSERT_TRUE(mixed);
  EXPECT_EQ(32u, mixed.text().size());
  EXPECT_EQ("0123456789abcdef", mixed.text().substr(0, 16));
}

int g_released = 0;
void count_release(void* value) {
  ++g_released;
  ::PLX_free(value);
}

TEST(Owners, ReleaseWhatTheyOwn) {
  g_released = 0;
  {
    const plx::ArrayOwner array(::PLX_array_create(count_release));
    const plx::ArrayView<char> view(array.get());
    for (const char* word : {"one", "two", "three"}) {
      plx::Block<char> copy(::PLX_strdup(word));
      ASSERT_TRUE(view.append(copy.get()));
      copy.release();
    }
    std::string joined;
    for (const char* word : view) joined += word;
    EXPECT_EQ("onetwothree", joined);
    EXPECT_EQ(3, view.size());
    EXPECT_STREQ("two", view[1]);
    EXPECT_EQ(nullptr, view[3]);
    EXPECT_EQ(0, plx::ArrayView<char>(nullptr).size());

    const plx::HashTableOwner table(
        ::PLX_hashtable_create(7, ::PLX_stringHashValue, ::PLX_stringHashCompare, count_release));
    const plx::TableView<char, char> names(table.get());
    ASSERT_TRUE(names.insert("key", ::PLX_strdup("value")));
    EXPECT_STREQ("value", names.find("key"));
    EXPECT_EQ(nullptr, names.find("Key"));
    EXPECT_EQ(1u, names.size());
  }
  EXPECT_EQ(4, g_released);

  const plx::JsonTree tree = plx::parse_json(R"({"a":{"b":"found"},"c":[]})");
  ASSERT_TRUE(tree);
  EXPECT_EQ("found", plx::find_text(tree.get(), "b"));
  EXPECT_EQ("other", plx::find_text(tree.get(), "c", "other"));
  EXPECT_FALSE(plx::parse_json("nothing"));
  const plx::BufferListOwner buffers(::PLX_bufList_init(2, 16));
  EXPECT_TRUE(buffers);
}

TEST(Arrays, GiveTheirSizeThemselves) {
  char text[8] = "";
  wchar_t wide[8] = L"";
  uint32_t words[4] = {1, 2, 3, 4};
  EXPECT_EQ(EOK, plx::strcpy_s(text, "1234"));
  EXPECT_EQ(EOK, plx::strcat_s(text, "567"));
  EXPECT_EQ(ERANGE_CLEARED, plx::strcat_s(text, "8"));
  EXPECT_EQ(EOK, plx::strncpy_s(text, "123456789", 7));
  EXPECT_EQ(ERANGE_CLEARED, plx::strncat_s(text, "123456789", 9));
  EXPECT_EQ(EOK, plx::wcscpy_s(wide, L"1234567"));
  EXPECT_EQ(ERANGE, plx::wcscpy_s(wide, L"12345678"));
  EXPECT_EQ(EOK, plx::wcsncpy_s(wide, L"12345678", 7));
  EXPECT_EQ(ERANGE_CLEARED, plx::wcscat_s(wide, L"8"));
  EXPECT_EQ(EOK, plx::wcsncat_s(wide, L"12345678", 7));
  EXPECT_EQ(EOK, plx::memset_s(words, 0));
  EXPECT_EQ(0u, words[0] | words[3]);
  EXPECT_EQ(EOK, plx::memcpy_s(words, "0123456789abcdef", 16));
  EXPECT_EQ(ERANGE_CLEARED, plx::memmove_s(words, "0123456789abcdefg", 17));
  EXPECT_EQ(7, plx::sprintf_s(text, "%d", 1234567));
  EXPECT_EQ(-1, plx::sprintf_s(text, "%d", 12345678));
  EXPECT_EQ(-1, plx::snprintf_s(text, 3, "%d", 1234567));
  EXPECT_STREQ("123", text);
  EXPECT_EQ(7, plx::swprintf_s(wide, L"%d", 1234567));
}

}  // namespace
