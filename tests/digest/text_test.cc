// Digests as text: of buffers, of texts, of files; and the STUN HMAC.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <openssl/err.h>
#include <plx/digest.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <thread>

#include "support/judge.h"
#include "support/leaks.h"

namespace {

using plx_test::as_bytes;
using plx_test::bytes_of;
using plx_test::hex;
using plx_test::judge_digest;
using plx_test::lowest_free_descriptor;
using plx_test::random_bytes;
using plx_test::unhex;

// The two families of wrappers, which share their rules.
struct Wrappers {
  const char* algorithm;
  int (*of_buffer)(const void* data, int len, char* out, int out_size);
  int (*of_file)(const char* path, char* out, int out_size);
};
const Wrappers kWrappers[] = {
    {"SHA256",
     [](const void* data, int len, char* out, int out_size) {
       return PLX_sha256_encoder_buf(static_cast<const unsigned char*>(data), len, out, out_size);
     },
     PLX_sha256_encoder_file},
    {"MD5",
     [](const void* data, int len, char* out, int out_size) {
       return PLX_md5_encoder_buf(data, static_cast<unsigned>(len), out, out_size);
     },
     PLX_md5_encoder_file},
};

class TempFolder {
 public:
  TempFolder() { EXPECT_NE(nullptr, mkdtemp(&path_[0])); }
  ~TempFolder() { EXPECT_EQ(0, system(("rm -rf " + path_).c_str())); }
  std::string file(const std::string& name) const { return path_ + "/" + name; }

 private:
  std::string path_ = "/tmp/plx_digest_XXXXXX";
};

// What `out_size` characters of room hold, in a field of 'x'.
std::string expected_image(const std::string& digits, int out_size) {
  std::string image(80, 'x');
  for (int i = 0; 2 * (i + 1) <= out_size && 2u * i < digits.size(); ++i) {
    const bool has_room_for_nul = 2 * (i + 1) < out_size;
    image.replace(2u * i, has_room_for_nul ? 3 : 2,
                  has_room_for_nul ? digits.substr(2u * i, 2) + '\0' : std::string(2, '\0'));
  }
  return image;
}

TEST(DigestText, EveryRoom) {
  const TempFolder folder;
  const std::string path = folder.file("abc");
  FILE* file = fopen(path.c_str(), "w");
  fputs("abc", file);
  fclose(file);
  for (const Wrappers& wrappers : kWrappers) {
    const std::string digits = hex(judge_digest(wrappers.algorithm, "abc"));
    for (int out_size = -1; out_size <= 70; ++out_size) {
      SCOPED_TRACE(testing::Message() << wrappers.algorithm << " " << out_size);
      std::string of_buffer(80, 'x'), of_file(80, 'x');
      const bool refused = out_size < 1 && !strcmp(wrappers.algorithm, "SHA256");
      EXPECT_EQ(refused ? -1 : 0, wrappers.of_buffer("abc", 3, &of_buffer[0], out_size));
      EXPECT_EQ(0, wrappers.of_file(path.c_str(), &of_file[0], out_size));
      EXPECT_EQ(expected_image(digits, out_size), of_buffer);
      EXPECT_EQ(of_buffer, of_file);
    }
  }
}

TEST(DigestText, RefusedBuffers) {
  std::string out(80, 'x');
  for (const Wrappers& wrappers : kWrappers) {
    EXPECT_EQ(-1, wrappers.of_buffer(nullptr, 3, &out[0], 80));
    EXPECT_EQ(-1, wrappers.of_buffer("abc", 3, nullptr, 80));
    EXPECT_EQ(-1, wrappers.of_file(nullptr, &out[0], 80));
    EXPECT_EQ(-1, wrappers.of_file("/dev/null", nullptr, 80));
  }
  EXPECT_EQ(-1, kWrappers[0].of_buffer("abc", 0, &out[0], 80));
  EXPECT_EQ(-1, kWrappers[0].of_buffer("abc", -1, &out[0], 80));
  EXPECT_EQ(std::string(80, 'x'), out);
  EXPECT_EQ(0, kWrappers[1].of_buffer("abc", 0, &out[0], 80));  // the empty message has an MD5
  EXPECT_STREQ("d41d8cd98f00b204e9800998ecf8427e", out.c_str());
}

TEST(DigestText, Files) {
  const TempFolder folder;
  for (size_t size : {0u, 1u, 1023u, 1024u, 1025u, 5000u}) {
    const std::string contents = random_bytes(size), path = folder.file(std::to_string(size));
    FILE* file = fopen(path.c_str(), "wb");
    fwrite(contents.data(), 1, size, file);
    fclose(file);
    for (const Wrappers& wrappers : kWrappers) {
      char out[80];
      EXPECT_EQ(0, wrappers.of_file(path.c_str(), out, sizeof out));
      EXPECT_EQ(hex(judge_digest(wrappers.algorithm, contents)), out) << size;
    }
  }
}

TEST(DigestText, OddFiles) {
  const TempFolder folder;
  const std::string fifo = folder.file("fifo");
  ASSERT_EQ(0, mkfifo(fifo.c_str(), 0600));
  const std::string missing = folder.file("none.bin"), missing_folder = folder.file("none/");
  struct Row {
    const char* path;
    int result;
    std::string contents;
    std::string message;
  };
  const Row rows[] = {
      {missing.c_str(), -1, "", "***none.bin can't be opened\n"},
      {missing_folder.c_str(), -1, "", missing_folder + " can't be opened\n"},
      {"none.bin", -1, "", "none.bin can't be opened\n"},
      {"", -1, "", " can't be opened\n"},
      {"/tmp", 0, "", ""},            // a folder opens and cannot be read
      {"/proc/self/mem", 0, "", ""},  // nothing is mapped at its start: a read error
      {fifo.c_str(), 0, "from a pipe", ""},
  };
  for (const Wrappers& wrappers : kWrappers) {
    for (const Row& row : rows) {
      SCOPED_TRACE(row.path);
      const int descriptor = lowest_free_descriptor();
      std::thread writer([&] {
        if (row.path != fifo) return;
        const int fd = open(row.path, O_WRONLY);
        EXPECT_EQ(11, write(fd, row.contents.data(), 11));
        close(fd);
      });
      std::string out(80, 'x');
      testing::internal::CaptureStderr();
      const int result = wrappers.of_file(row.path, &out[0], 80);
      EXPECT_EQ(row.message, testing::internal::GetCapturedStderr());
      writer.join();
      EXPECT_EQ(row.result, result);
      EXPECT_EQ(row.result != 0
                    ? std::string(80, 'x')
                    : expected_image(hex(judge_digest(wrappers.algorithm, row.contents)), 80),
                out);
      EXPECT_EQ(descriptor, lowest_free_descriptor());
    }
  }
}

TEST(Md5Text, PublishedVectorsInEachForm) {  // RFC 1321, appendix A.5
  struct Row {
    const char* text;
    const char* digits;
    const char* unpadded;  // a byte below 0x10 is one digit: callers depend on it
  };
  const Row rows[] = {
      {"", "d41d8cd98f00b204e9800998ecf8427e", "d41d8cd98f0b24e980998ecf8427e"},
      {"a", "0cc175b9c0f1b6a831c399e269772661", "cc175b9c0f1b6a831c399e269772661"},
      {"abc", "900150983cd24fb0d6963f7d28e17f72", "90150983cd24fb0d6963f7d28e17f72"},
      {"message digest", "f96b697d7cb7938d525a2f31aaf161d0", "f96b697d7cb7938d525a2f31aaf161d0"},
      {"abcdefghijklmnopqrstuvwxyz", "c3fcd3d76192e4007dfb496cca67e13b",
       "c3fcd3d76192e407dfb496cca67e13b"},
      {"12345678901234567890123456789012345678901234567890123456789012345678901234567890",
       "57edf4a22be3c955ac49da2e2107b67a", "57edf4a22be3c955ac49da2e217b67a"},
  };
  for (const Row& row : rows) {
    std::string upper = row.digits;
    for (char& c : upper) c = static_cast<char>(toupper(c));
    EXPECT_STREQ(upper.c_str(), PLX_md5_163encode(row.text));
    char out[33];
    EXPECT_EQ(0, PLX_md5_encoder_buf(row.text, static_cast<unsigned>(strlen(row.text)), out, 33));
    EXPECT_STREQ(row.digits, out);
    EXPECT_STREQ(row.unpadded, PLX_md5_encode(row.text, nullptr));
    for (size_t cut = 0; cut <= strlen(row.text); ++cut) {
      const std::string first(row.text, cut);
      EXPECT_STREQ(row.unpadded, PLX_md5_encode(first.c_str(), row.text + cut)) << cut;
    }
  }
  // The shorter text leaves nothing of the longer one, and the two forms share no buffer.
  char* text = PLX_md5_encode("message digest", "");
  EXPECT_NE(text, PLX_md5_163encode("a"));
  EXPECT_EQ(text, PLX_md5_encode("", nullptr));
  EXPECT_EQ(std::string(4, '\0'), as_bytes(text + 29, 4));
}

TEST(StunHmac, PublishedVectors) {  // RFC 2202, section 3
  struct Row {
    std::string key, data;
    const char* hmac;
  };
  const Row rows[] = {
      {std::string(20, '\x0b'), "Hi There", "b617318655057264e28bc0b6fb378c8ef146be00"},
      {"Jefe", "what do ya want for nothing?", "effcdf6ae5eb2fa2d27416d5f184df9c259a7c79"},
      {std::string(20, '\xaa'), std::string(50, '\xdd'),
       "125d7342b9ac11cd91a39af48aa17b4f63f175d3"},
      {std::string(80, '\xaa'), "Test Using Larger Than Block-Size Key - Hash Key First",
       "aa4ae5e15272d00e95705637ce8a3b55ed402112"},
      {"", "", "fbdb1d1b18aa6c08324b7d64b71fb76370690e1d"},  // HMAC() of libcrypto
  };
  for (const Row& row : rows) {
    uint8_t out[20];
    EXPECT_EQ(out, stunHMAC(out, row.data.empty() ? nullptr : bytes_of(row.data), row.data.size(),
                            row.key.empty() ? nullptr : row.key.data(),
                            static_cast<int>(row.key.size())));
    EXPECT_EQ(row.hmac, hex(as_bytes(out, sizeof out)));
  }
}

TEST(StunHmac, RefusalsLeaveNoTrace) {
  ERR_raise(ERR_LIB_USER, 1);  // the host's own entry
  uint8_t out[20];
  EXPECT_EQ(nullptr, stunHMAC(nullptr, bytes_of("a"), 1, "k", 1));
  EXPECT_EQ(nullptr, stunHMAC(out, bytes_of("a"), 1, "k", -1));
  EXPECT_EQ(nullptr, stunHMAC(out, nullptr, 1, "k", 1));
  EXPECT_EQ(nullptr, stunHMAC(out, bytes_of("a"), 1, nullptr, 1));
  EXPECT_EQ(out, stunHMAC(out, nullptr, 0, nullptr, 0));
  EXPECT_NE(0u, ERR_get_error());
  EXPECT_EQ(0u, ERR_get_error());
}

}  // namespace
