#include <gtest/gtest.h>
#include <limits.h>
#include <plx/key_store.h>
#include <string.h>

#include <string>

#include "cipher/key_store.h"
#include "cipher/support.h"
#include "support/key_files.h"
#include "support/leaks.h"

namespace {

using namespace plx_test;
using plx::cipher::KeyFault;
using plx::cipher::load_work_key;

const std::string kFactor = "a 16-byte factor", kMore = "a 16-byte factor and more";
const std::string kTenMib(10 << 20, 'Q');

TEST(KeyStore, Table) {
  std::string table;
  for (int i = 0; i < 5; ++i) {
    const tagKeyMap& row = g_stKeyMap[i];
    const std::string name = row.pszKeyName;
    table += name + " " + row.pszFactorPath + " " + row.pszWorkKeyPath + "\n";
    EXPECT_EQ(i, getIndexValueSetByName(name));
    EXPECT_EQ(-1, getIndexValueSetByName(name + "s"));
    EXPECT_EQ(-1, getIndexValueSetByName(name + '\0'));
    EXPECT_EQ(-1, getIndexValueSetByName(name.substr(0, name.size() - 1)));
  }
  EXPECT_EQ(
      "encrypt_stb_key /system/etc/security/i/c/f /system/etc/security/i/c/w\n"
      "aes_prefix_key /system/etc/security/i/p/f /system/etc/security/i/p/w\n"
      "whitelist_key /system/etc/security/i/w/f /system/etc/security/i/w/w\n"
      "pvr_file_key /system/etc/security/i/v/f /system/etc/security/i/v/w\n"
      "epg_profile_key /data/security/i/u/f /data/security/i/u/w\n",
      table);
}

TEST(KeyStore, Factor) {
  const std::string text = base64(kFactor);
  struct Row {
    const char* why;
    std::string file;
    int size, result;
    std::string factor;  // what is copied
  };
  const Row rows[] = {
      {"16 bytes into more room", text, 40, 0, kFactor},
      {"without a line feed", text.substr(0, 24), 16, 0, kFactor},
      {"a short one", base64("short"), 16, 0, "short"},
      {"a long one is passed over", base64(kMore), 16, 0, ""},
      {"but fits into more room", base64(kMore), 25, 0, kMore},
      {"no Base64: the result says nothing", "?!", 16, 0, ""},
      {"the file behind 32 bytes is not read", text + "\n\n\n\n\n\n\n?", 16, 0, kFactor},
      {"10 MiB, of which 32 characters are 24 bytes", kTenMib, 16, 0, ""},
      {"an empty file", "", 16, -1, ""},
      {"15 bytes of room", text, 15, -1, ""},
      {"negative room", text, INT_MIN, -1, ""},
      {"more room than can be had", text, INT_MAX, -1, ""},
  };
  KeyFiles files;
  const int descriptor = lowest_free_descriptor();
  for (const Row& row : rows) {
    SCOPED_TRACE(row.why);
    files.write_factor(1, row.file);
    std::string out(40, '.');
    EXPECT_EQ(row.result, getFactorByIndex(1, bytes_of(out), row.size));
    EXPECT_EQ(row.factor + std::string(40 - row.factor.size(), '.'), out);
  }
  std::string out(16, '.');
  for (int index : {-1, 5, INT_MIN, INT_MAX, 2}) {  // row 2 has no file
    EXPECT_EQ(-1, getFactorByIndex(index, bytes_of(out), 16)) << index;
  }
  EXPECT_EQ(-1, getFactorByIndex(1, nullptr, 16));
  for (const char* path : {files.folder().c_str(), static_cast<const char*>(nullptr)}) {
    g_stKeyMap[1].pszFactorPath = path;
    EXPECT_EQ(-1, getFactorByIndex(1, bytes_of(out), 16));
  }
  EXPECT_EQ(std::string(16, '.'), out);
  EXPECT_EQ(descriptor, lowest_free_descriptor());
}

unsigned char* no_vector(unsigned char*, unsigned int) { return nullptr; }
unsigned char* own_vector(unsigned char* dst, unsigned int size) {
  memset(dst, 'v', size);
  return dst;
}

TEST(KeyStore, InitKey) {
  struct Row {
    const char* why;
    std::string file, factor;  // and how it counts
    int index, size;
    tagKeyVectorFunction vector;
    int result;
  };
  const std::string text = base64(kFactor), zeros(16, '\0');
  const Row rows[] = {
      {"as many bytes as asked for", text, kFactor, 0, 1, getVectorForSTBEncyptInitKey, 0},
      {"", text, kFactor, 1, 16, getVectorForCipherPrefixInitKey, 0},
      {"", text, kFactor, 2, 40, getVectorForWhiteListInitKey, 0},
      {"filled with zeros", base64("a"), "a" + zeros, 3, 16, getVectorForPVRFileInitKey, 0},
      {"too long", base64(kMore), zeros, 4, 16, getVectorForEPGProfileEncyptInitKey, 0},
      {"a row of the host's", text, kFactor, 4, 16, own_vector, 0},
      {"a vector function that fails", text, "", 4, 16, no_vector, -1},
      {"none", text, "", 4, 16, nullptr, -1},
      {"no factor", "", "", 4, 16, own_vector, -1},
      {"no such row", text, "", 5, 16, own_vector, -1},
      {"", text, "", -1, 16, own_vector, -1},
      {"nothing asked for", text, "", 1, 0, own_vector, -1},
      {"", text, "", 1, INT_MIN, own_vector, -1},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.why);
    KeyFiles files;
    for (int i = 0; i < 5; ++i) files.write_factor(i, row.file);
    if (row.index == 4) g_stKeyMap[4].pfnGetVector = row.vector;
    std::string vector(16, '.'), out(41, '.'), expected;
    if (row.result == 0) {
      row.vector(bytes_of(vector), 16);
      expected = pbkdf2(row.factor.substr(0, 16), vector, 10000, row.size);
    }
    EXPECT_EQ(row.result, DeriveInitKeyByIndex(row.index, bytes_of(out), row.size));
    EXPECT_TRUE(out == expected + std::string(41 - expected.size(), '.'));
    EXPECT_EQ(-1, DeriveInitKeyByIndex(row.index, nullptr, 16));
    unsigned char* none = row.vector != nullptr ? bytes_of(vector) : nullptr;
    const unsigned index = static_cast<unsigned>(row.index);
    EXPECT_TRUE(index != 4 || row.vector == no_vector ||
                none == getVectorForInitKeyByIndex(4, bytes_of(vector), 16));
  }
}

TEST(KeyStore, WorkKey) {
  KeyFiles files;
  files.write_factor(1, base64(kFactor));
  std::string init_key(16, '\0');
  ASSERT_EQ(0, DeriveInitKeyByIndex(1, bytes_of(init_key), 16));
  const auto file_of = [&](const std::string& key) { return base64(sealed(key, init_key)); };
  const std::string blob = sealed("work key", init_key), fifteen(15, 'k'), long_key(700, 'k');
  std::string damaged = sealed(std::string(16, 'p'), init_key);
  damaged[31] ^= 1;  // the last byte of the block before the padding
  struct Row {
    const char* why;
    std::string file;
    int size;
    KeyFault fault;
    std::string key;  // what is copied
  };
  const Row rows[] = {
      {"a key of many lines", file_of(long_key), 701, KeyFault::kNone, long_key},
      {"a key that just fits", file_of(fifteen), 16, KeyFault::kNone, fifteen},
      {"that does not", file_of(fifteen), 15, KeyFault::kWorkKeyDoesNotFit, ""},
      {"no room", file_of(""), 0, KeyFault::kWorkKeyDoesNotFit, ""},
      {"negative room", file_of("key"), INT_MIN, KeyFault::kWorkKeyDoesNotFit, ""},
      {"an empty key", file_of(""), 1, KeyFault::kNone, ""},
      {"a zero byte ends it", file_of(std::string("w\0rk", 4)), 5, KeyFault::kNone, "w"},
      {"but all must fit", file_of(std::string("w\0rk", 4)), 4, KeyFault::kWorkKeyDoesNotFit, ""},
      {"an empty file", "", 32, KeyFault::kWorkKeyNotBase64, ""},
      {"no Base64", "?", 32, KeyFault::kWorkKeyNotBase64, ""},
      {"zero bytes", std::string(100, '\0'), 32, KeyFault::kWorkKeyNotBase64, ""},
      {"less than an IV", base64(blob.substr(0, 15)), 32, KeyFault::kWorkKeyTooShort, ""},
      {"no cipher text", base64(blob.substr(0, 16)), 32, KeyFault::kWorkKeyNotOpened, ""},
      {"a cut cipher text", base64(blob.substr(0, 31)), 32, KeyFault::kWorkKeyNotOpened, ""},
      {"damaged padding", base64(damaged), 32, KeyFault::kWorkKeyNotOpened, ""},
      {"10 MiB", kTenMib, 32, KeyFault::kWorkKeyNotOpened, ""},
  };
  const int descriptor = lowest_free_descriptor();
  for (const Row& row : rows) {
    SCOPED_TRACE(row.why);
    const HostErrors errors;
    files.write_work_key(1, row.file);
    const bool loads = row.fault == KeyFault::kNone;
    std::string out(800, '.'), expected = loads ? row.key + '\0' : "";
    expected.resize(800, '.');
    EXPECT_EQ(row.fault, load_work_key("aes_prefix_key", &out[0], row.size));
    EXPECT_EQ(expected, out);
  }
  files.write_work_key(1, file_of("key"));
  char out[32] = "untouched";
  EXPECT_EQ(-1, getPlainWorkKeyByName("aes_prefix", out, 32));
  EXPECT_EQ(-1, getPlainWorkKeyByName("aes_prefix_key", nullptr, 32));
  EXPECT_EQ(-1, getPlainWorkKeyByName("whitelist_key", out, 32));  // no files
  const char* path = g_stKeyMap[1].pszWorkKeyPath;
  for (const char* unreadable :
       {files.folder().c_str(), "/no/file", static_cast<const char*>(nullptr)}) {
    g_stKeyMap[1].pszWorkKeyPath = unreadable;
    EXPECT_EQ(KeyFault::kWorkKeyUnreadable, load_work_key("aes_prefix_key", out, 32));
  }
  g_stKeyMap[1].pszWorkKeyPath = path;
  files.write_factor(1, "");
  EXPECT_EQ(KeyFault::kFactorEmpty, load_work_key("aes_prefix_key", out, 32));
  EXPECT_STREQ("untouched", out);
  EXPECT_EQ(descriptor, lowest_free_descriptor());
}

TEST(KeyStore, EachKeyIsItsOwnAndOneIsTheBoxes) {
  KeyFiles files;
  strcpy(g_szStbId, "STB-000123");
  for (int i = 0; i < 5; ++i) files.provision(i, kFactor, "key " + std::to_string(i));
  for (const char* id : {"STB-000123", ""}) {
    strcpy(g_szStbId, id);
    for (int i = 0; i < 5; ++i) {
      SCOPED_TRACE(testing::Message() << id << " " << i);
      char out[16] = "";
      const bool loads = i != 4 || *id != 0;
      EXPECT_EQ(loads ? 0 : -1, getPlainWorkKeyByName(g_stKeyMap[i].pszKeyName, out, 16));
      EXPECT_EQ(loads ? "key " + std::to_string(i) : "", out);
    }
  }
}

}  // namespace
