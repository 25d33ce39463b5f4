// Runs our key-dependent code under valgrind with keys and data marked undefined: a branch or an
// index that depends on them is reported. Prints how many reports each piece of code gave. To be
// compiled without what the processor has and valgrind has not.
#include <plx/digest.h>
#include <stdio.h>
#include <string.h>
#include <valgrind/memcheck.h>

#include "cipher/hex_text.h"
#include "digest/arch/des.h"
#include "digest/arch/kernels.h"
#include "digest/base64_text.h"
#include "digest/des.h"
#include "digest/hex.h"
#include "digest/sha256_packed.h"
#include "digest/sha256_staged.h"

namespace {

using namespace plx;

unsigned char key[64], data[8 * 600], output[8 * 600];
char text[4 * 1600];
Des3Context context;

template <typename T>
void taint(T& object) {
  VALGRIND_MAKE_MEM_UNDEFINED(&object, sizeof object);
}
template <typename T>
void clear(T& object) {
  VALGRIND_MAKE_MEM_DEFINED(&object, sizeof object);
}

void expose_branch() {
  if (key[0] == 1) output[0] = 1;
}
void expose_index() { output[0] = data[key[0]]; }

void hash_staged() {
  uint32_t state[8] = {1, 2, 3, 4, 5, 6, 7, 8};
  digest::staged::blocks_portable(state, data, 8);
  digest::staged::hash(output, data, 200);
}
void hash_packed() {
  uint32_t state[8] = {1, 2, 3, 4, 5, 6, 7, 8};
  digest::packed::blocks_portable(state, data, 8);
  sha256_get(output, data, 200);
}
void authenticate() { hmac_sha256_get(output, data, 200, key, 64); }
void authenticate_with_long_key() { hmac_sha256_get(output, data, 200, data, 100); }
void write_hex() { cipher::write_hex(data, 100, text); }
void write_hex_tail() { cipher::write_hex(data, 3, text); }
void read_hex() { cipher::read_hex(text, 201, output); }
void read_hex_tail() { cipher::read_hex(text, 3, output); }
void write_digest() { digest::write_hex(text, 65, data, 32); }
void schedule() { PLX_3des_set3keys(&context, key, key + 8, key + 16); }
void crypt_sliced() {
  digest::des::des_blocks_portable64(context.encSubkeys, 3, output, data, 600);
}
void crypt_avx2() {
#if defined(__x86_64__)
  if (cpu::has(cpu::kAvx2)) {
    digest::des::des_blocks_avx2(context.encSubkeys, 3, output, data, 600);
  }
#endif
}
void crypt_by_tables() { PLX_3des_encrypt(&context, data, output, 20); }
void encode() { PLX_b64_encode(data, 100, text, sizeof text); }
void decode() { PLX_b64_decode(text, 200, output); }

const struct {
  const char* name;
  void (*run)();
} kPieces[] = {
    {"self-test: a branch", expose_branch},
    {"self-test: an index", expose_index},
    {"SHA-256, first family", hash_staged},
    {"SHA-256, second family", hash_packed},
    {"HMAC-SHA-256", authenticate},
    {"HMAC-SHA-256, long key", authenticate_with_long_key},
    {"hex, written", write_hex},
    {"hex, written by words", write_hex_tail},
    {"hex, read", read_hex},
    {"hex, read by words", read_hex_tail},
    {"hex of digests", write_digest},
    {"DES, key schedule", schedule},
    {"DES, bitsliced, 64 lanes", crypt_sliced},
    {"DES, bitsliced, AVX2", crypt_avx2},
    {"DES, by tables", crypt_by_tables},
    {"Base64, encoded", encode},
    {"Base64, decoded", decode},
};

}  // namespace

int main() {
  for (const auto& piece : kPieces) {
    clear(context);
    PLX_3des_set3keys(&context, data, data + 8, data + 16);
    memset(text, 'A', sizeof text);
    taint(key);
    taint(data);
    taint(context);
    taint(text);
    const unsigned before = VALGRIND_COUNT_ERRORS;
    piece.run();
    printf("%u\t%s\n", VALGRIND_COUNT_ERRORS - before, piece.name);
    clear(key);
    clear(data);
    clear(output);
    clear(text);
  }
}
