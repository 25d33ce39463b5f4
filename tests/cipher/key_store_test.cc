#include <dirent.h>
#include <gtest/gtest.h>
#include <limits.h>
#include <plx/key_store.h>
#include <string.h>

#include <string>

#include "cipher/key_store.h"
#include "cipher/secrets.h"
#include "cipher/support.h"
#include "support/allocation.h"
#include "support/key_files.h"

namespace {

using namespace plx_test;
using plx::cipher::KeyFault;

const std::string kFactor = "a 16-byte factor";

size_t open_descriptors() {
  size_t count = 0;
  DIR* folder = opendir("/proc/self/fd");
  while (readdir(folder) != nullptr) ++count;
  closedir(folder);
  return count;
}

TEST(KeyStore, Table) {
  struct Row {
    const char *name, *factor, *work_key;
    tagKeyVectorFunction vector;
  };
  const Row rows[] = {
      {"encrypt_stb_key", "/system/etc/security/i/c/f", "/system/etc/security/i/c/w",
       getVectorForSTBEncyptInitKey},
      {"aes_prefix_key", "/system/etc/security/i/p/f", "/system/etc/security/i/p/w",
       getVectorForCipherPrefixInitKey},
      {"whitelist_key", "/system/etc/security/i/w/f", "/system/etc/security/i/w/w",
       getVectorForWhiteListInitKey},
      {"pvr_file_key", "/system/etc/security/i/v/f", "/system/etc/security/i/v/w",
       getVectorForPVRFileInitKey},
      {"epg_profile_key", "/data/security/i/u/f", "/data/security/i/u/w",
       getVectorForEPGProfileEncyptInitKey},
  };
  for (int i = 0; i < 5; ++i) {
    const std::string name = rows[i].name;
    EXPECT_EQ(name, g_stKeyMap[i].pszKeyName);
    EXPECT_STREQ(rows[i].factor, g_stKeyMap[i].pszFactorPath);
    EXPECT_STREQ(rows[i].work_key, g_stKeyMap[i].pszWorkKeyPath);
    EXPECT_EQ(rows[i].vector, g_stKeyMap[i].pfnGetVector);
    EXPECT_EQ(i, getIndexValueSetByName(name));
    EXPECT_EQ(-1, getIndexValueSetByName(name + "s"));
    EXPECT_EQ(-1, getIndexValueSetByName(name + '\0'));
    EXPECT_EQ(-1, getIndexValueSetByName(name.substr(0, name.size() - 1)));
  }
  EXPECT_EQ(-1, getIndexValueSetByName(""));
  EXPECT_EQ(64u, sizeof g_szStbId);
  EXPECT_EQ(512u, sizeof g_WorkKey);
}

TEST(KeyStore, Factor) {
  const std::string text = base64(kFactor), ten_mib(10 << 20, 'Q');
  struct Row {
    const char* why;
    std::string file;
    int size, result;
    std::string factor;  // what is copied
  };
  const Row rows[] = {
      {"16 bytes", text, 16, 0, kFactor},
      {"into more room", text, 40, 0, kFactor},
      {"without a line feed", text.substr(0, 24), 16, 0, kFactor},
      {"a short one", base64("short"), 16, 0, "short"},
      {"20 bytes are passed over", base64(kFactor + "more"), 16, 0, ""},
      {"but fit into 20", base64(kFactor + "more"), 20, 0, kFactor + "more"},
      {"no Base64: the result says nothing", "?!", 16, 0, ""},
      {"the file behind 32 bytes is not read", text.substr(0, 24) + "\n\n\n\n\n\n\n\n?", 16, 0,
       kFactor},
      {"10 MiB, of which 32 bytes make 24", ten_mib, 16, 0, ""},
      {"an empty file", "", 16, -1, ""},
      {"15 bytes of room", text, 15, -1, ""},
      {"negative room", text, INT_MIN, -1, ""},
      {"more room than can be had", text, INT_MAX, -1, ""},
  };
  KeyFiles files;
  const size_t descriptors = open_descriptors();
  for (const Row& row : rows) {
    SCOPED_TRACE(row.why);
    files.write_factor(1, row.file);
    std::string out(40, '.');
    EXPECT_EQ(row.result, getFactorByIndex(1, bytes(out), row.size));
    EXPECT_EQ(row.factor + std::string(40 - row.factor.size(), '.'), out);
  }
  std::string out(16, '.');
  for (int index : {-1, 5, INT_MIN, INT_MAX, 2}) {  // row 2 has no file
    EXPECT_EQ(-1, getFactorByIndex(index, bytes(out), 16)) << index;
  }
  EXPECT_EQ(-1, getFactorByIndex(1, nullptr, 16));
  g_stKeyMap[1].pszFactorPath = files.folder().c_str();
  EXPECT_EQ(-1, getFactorByIndex(1, bytes(out), 16));  // opens, but cannot be read
  g_stKeyMap[1].pszFactorPath = nullptr;
  EXPECT_EQ(-1, getFactorByIndex(1, bytes(out), 16));
  EXPECT_EQ(std::string(16, '.'), out);
  EXPECT_EQ(descriptors, open_descriptors());
}

unsigned char* no_vector(unsigned char*, unsigned int) { return nullptr; }
unsigned char* own_vector(unsigned char* dst, unsigned int size) {
  memset(dst, 'v', size);
  return dst;
}

TEST(KeyStore, InitKey) {
  struct Row {
    const char* why;
    std::string factor_file, factor;  // as it counts
    int index, size;
    tagKeyVectorFunction vector;
    int result;
  };
  const std::string zeros(16, '\0');
  const Row rows[] = {
      {"as many bytes as asked for", base64(kFactor), kFactor, 0, 1, nullptr, 0},
      {"", base64(kFactor), kFactor, 1, 16, nullptr, 0},
      {"", base64(kFactor), kFactor, 2, 40, nullptr, 0},
      {"a short factor is filled with zeros", base64("ab"), "ab" + zeros.substr(2), 3, 16, nullptr,
       0},
      {"a long one counts as zeros", base64(kFactor + "more"), zeros, 4, 16, nullptr, 0},
      {"the row's vector is the one", base64(kFactor), kFactor, 4, 16, own_vector, 0},
      {"a row without a vector", base64(kFactor), "", 4, 16, no_vector, -1},
      {"no factor", "", "", 4, 16, nullptr, -1},
      {"no such row", base64(kFactor), "", 5, 16, nullptr, -1},
      {"", base64(kFactor), "", -1, 16, nullptr, -1},
      {"nothing asked for", base64(kFactor), "", 1, 0, nullptr, -1},
      {"", base64(kFactor), "", 1, -1, nullptr, -1},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.why);
    KeyFiles files;
    for (int i = 0; i < 5; ++i) files.write_factor(i, row.factor_file);
    unsigned char vector[16] = {}, expected[41];
    memset(expected, '.', sizeof expected);
    if (row.vector != nullptr) g_stKeyMap[row.index].pfnGetVector = row.vector;
    if (row.result == 0) {
      g_stKeyMap[row.index].pfnGetVector(vector, 16);
      PKCS5_PBKDF2_HMAC(row.factor.data(), 16, vector, 16, 10000, EVP_sha256(), row.size, expected);
    }
    std::string out(41, '.');
    EXPECT_EQ(row.result, DeriveInitKeyByIndex(row.index, bytes(out), row.size));
    EXPECT_TRUE(out == std::string(reinterpret_cast<char*>(expected), 41));
    EXPECT_EQ(-1, DeriveInitKeyByIndex(row.index, nullptr, 16));
  }
  KeyFiles files;
  files.write_factor(0, base64(kFactor));
  g_stKeyMap[0].pfnGetVector = nullptr;
  unsigned char out[16];
  EXPECT_EQ(-1, DeriveInitKeyByIndex(0, out, 16));
  EXPECT_EQ(nullptr, getVectorForInitKeyByIndex(0, out, 16));
}

TEST(KeyStore, WorkKey) {
  KeyFiles files;
  files.write_factor(1, base64(kFactor));
  std::string init_key(16, '\0');
  ASSERT_EQ(0, DeriveInitKeyByIndex(1, bytes(init_key), 16));
  const auto file_of = [&](const std::string& key) { return base64(sealed(key, init_key)); };
  const std::string blob = sealed("work key", init_key), fifteen(15, 'k');
  std::string damaged = sealed(std::string(16, 'p'), init_key);
  damaged[31] ^= 1;  // the last byte of the block before the padding
  const std::string ten_mib(10 << 20, 'Q');
  struct Row {
    const char* why;
    std::string file;
    int size;
    KeyFault fault;
    std::string key;  // what is copied, with its terminator
  };
  const Row rows[] = {
      {"a key", file_of("work key"), 32, KeyFault::kNone, "work key"},
      {"that just fits", file_of(fifteen), 16, KeyFault::kNone, fifteen},
      {"that does not", file_of(fifteen), 15, KeyFault::kWorkKeyDoesNotFit, ""},
      {"no room", file_of(""), 0, KeyFault::kWorkKeyDoesNotFit, ""},
      {"negative room", file_of("work key"), INT_MIN, KeyFault::kWorkKeyDoesNotFit, ""},
      {"an empty key", file_of(""), 1, KeyFault::kNone, ""},
      {"a zero byte ends the copy", file_of(std::string("wo\0rk", 5)), 6, KeyFault::kNone, "wo"},
      {"but the whole key must fit", file_of(std::string("wo\0rk", 5)), 5,
       KeyFault::kWorkKeyDoesNotFit, ""},
      {"a key of many lines", file_of(std::string(700, 'k')), 701, KeyFault::kNone,
       std::string(700, 'k')},
      {"an empty file", "", 32, KeyFault::kWorkKeyNotBase64, ""},
      {"no Base64", "?", 32, KeyFault::kWorkKeyNotBase64, ""},
      {"zero bytes", std::string(100, '\0'), 32, KeyFault::kWorkKeyNotBase64, ""},
      {"less than an IV", base64(blob.substr(0, 15)), 32, KeyFault::kWorkKeyTooShort, ""},
      {"no cipher text", base64(blob.substr(0, 16)), 32, KeyFault::kWorkKeyNotOpened, ""},
      {"a cut cipher text", base64(blob.substr(0, 31)), 32, KeyFault::kWorkKeyNotOpened, ""},
      {"damaged padding", base64(damaged), 32, KeyFault::kWorkKeyNotOpened, ""},
      {"10 MiB", ten_mib, 32, KeyFault::kWorkKeyNotOpened, ""},
  };
  const size_t descriptors = open_descriptors();
  for (const Row& row : rows) {
    SCOPED_TRACE(row.why);
    const HostErrors errors;
    files.write_work_key(1, row.file);
    const bool loads = row.fault == KeyFault::kNone;
    std::string out(800, '.'), expected = loads ? row.key + '\0' : "";
    expected.resize(800, '.');
    EXPECT_EQ(loads ? 0 : -1, getPlainWorkKeyByName("aes_prefix_key", &out[0], row.size));
    EXPECT_EQ(expected, out);
    EXPECT_EQ(row.fault, plx::cipher::load_work_key("aes_prefix_key", &out[0], row.size));
  }
  files.write_work_key(1, file_of("work key"));
  char out[32] = "untouched";
  EXPECT_EQ(-1, getPlainWorkKeyByName("aes_prefix", out, 32));
  EXPECT_EQ(-1, getPlainWorkKeyByName("aes_prefix_key", nullptr, 32));
  EXPECT_EQ(-1, getPlainWorkKeyByName("whitelist_key", out, 32));  // no files
  const std::string path = g_stKeyMap[1].pszWorkKeyPath;
  for (const char* unreadable :
       {files.folder().c_str(), static_cast<const char*>(nullptr), "/dev/null/none"}) {
    g_stKeyMap[1].pszWorkKeyPath = unreadable;
    EXPECT_EQ(KeyFault::kWorkKeyUnreadable, plx::cipher::load_work_key("aes_prefix_key", out, 32));
  }
  g_stKeyMap[1].pszWorkKeyPath = path.c_str();
  files.write_factor(1, base64("another factor.."));
  EXPECT_EQ(-1, getPlainWorkKeyByName("aes_prefix_key", out, 32));
  EXPECT_STREQ("untouched", out);
  EXPECT_EQ(descriptors, open_descriptors());
}

TEST(KeyStore, EachKeyIsItsOwnAndOneIsTheBoxes) {
  KeyFiles files;
  strcpy(g_szStbId, "STB-000123");
  for (int i = 0; i < 5; ++i) files.provision(i, kFactor, "key " + std::to_string(i));
  for (const char* id : {"STB-000123", "STB-000124", ""}) {
    strcpy(g_szStbId, id);
    for (int i = 0; i < 5; ++i) {
      SCOPED_TRACE(testing::Message() << id << " " << i);
      char out[16] = "";
      const bool loads = i != 4 || strcmp(id, "STB-000123") == 0;
      EXPECT_EQ(loads ? 0 : -1, getPlainWorkKeyByName(g_stKeyMap[i].pszKeyName, out, 16));
      EXPECT_EQ(loads ? "key " + std::to_string(i) : "", out);
    }
  }
}

TEST(KeyStore, EveryAllocationFailing) {
  KeyFiles files;
  files.provision(0, kFactor, "work key");
  char out[32] = "untouched";
  long leaked = 0;
  const size_t failed = fail_each_allocation(
      [&](const AllocationFault& fault) {
        const KeyFault result = plx::cipher::load_work_key("encrypt_stb_key", out, 32);
        // The C library's buffer of the work-key file may be among them; that file opens then all
        // the same, or not.
        EXPECT_EQ(!fault.hit(), result == KeyFault::kNone);
        EXPECT_STREQ(fault.hit() ? "untouched" : "work key", out);
      },
      &leaked);
  EXPECT_LE(4u, failed);
  EXPECT_EQ(0, leaked);
}

}  // namespace
