#include "secrets/detector.h"

#include <ctype.h>
#include <malloc.h>
#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <openssl/md5.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <ucontext.h>

#include <algorithm>
#include <map>

#include "support/allocation.h"
#include "support/judge.h"

extern "C" {
void* __real_malloc(size_t size);
void* __real_realloc(void* block, size_t size);
void __real_free(void* block);
}

namespace plx_test {
namespace {

constexpr size_t kPiece = 8, kStackSize = 512 * 1024;
constexpr unsigned char kPaint = 0xC3;

std::map<uint64_t, std::string> pieces;
bool first_bytes[1 << 16];  // of all pieces, so that most places need one look

void add_pieces(const std::string& name, const std::string& bytes) {
  for (size_t i = 0; i + kPiece <= bytes.size(); ++i) {
    const std::string piece = bytes.substr(i, kPiece);
    std::string different = piece;
    std::sort(different.begin(), different.end());
    different.erase(std::unique(different.begin(), different.end()), different.end());
    if (different.size() < 4) continue;  // could be anything
    uint64_t number;
    uint16_t first;
    memcpy(&number, piece.data(), kPiece);
    memcpy(&first, piece.data(), sizeof first);
    pieces.emplace(number, name);
    first_bytes[first] = true;
  }
}

// The name of a secret in the region and where the piece stands, or null.
const std::string* search(const unsigned char* from, const unsigned char* to, size_t* out_offset) {
  for (const unsigned char* p = from; p + kPiece <= to; ++p) {
    uint16_t first;
    memcpy(&first, p, sizeof first);
    if (!first_bytes[first]) continue;
    uint64_t number;
    memcpy(&number, p, sizeof number);
    const auto found = pieces.find(number);
    if (found == pieces.end()) continue;
    *out_offset = static_cast<size_t>(p - from);
    return &found->second;
  }
  return nullptr;
}

// All searching is done on the program's own stack while the watched one rests, for a search would
// write over what it is looking for.
enum class Request { kNone, kEnterLibcrypto, kLeaveLibcrypto, kOurBlock, kLibcryptoBlock };

unsigned char* stack;
ucontext_t searcher, watched;
bool is_watching;
Request request;
const void* block;
Findings findings;
const std::function<void()>* body;

void ask(Request what) {
  if (!is_watching || request != Request::kNone) return;
  request = what;
  swapcontext(&watched, &searcher);
}

unsigned char* stack_pointer() {
#if defined(__x86_64__)
  return reinterpret_cast<unsigned char*>(watched.uc_mcontext.gregs[REG_RSP]);
#elif defined(__i386__)
  return reinterpret_cast<unsigned char*>(watched.uc_mcontext.gregs[REG_ESP]);
#else
  return reinterpret_cast<unsigned char*>(watched.uc_mcontext.arm_sp);
#endif
}

unsigned char* lowest_written() {
  unsigned char* p = stack;
  while (p != stack + kStackSize && *p == kPaint) ++p;
  return p;
}

// The call's allocations may be failing at this time, so nothing is allocated.
void note(const std::string* secret, const char* where, size_t bytes) {
  if (findings.ours.size() < findings.ours.capacity())
    findings.ours.push_back({secret, where, bytes});
}

void search_stack(unsigned char* to, const char* where) {
  size_t offset;
  unsigned char* from = lowest_written();
  if (from >= to) return;
  if (const std::string* name = search(from, to, &offset)) {
    note(name, where, static_cast<size_t>(stack + kStackSize - from) - offset);
  }
}

void serve() {
  size_t offset;
  unsigned char* below = stack_pointer();
  switch (request) {
    case Request::kNone:
      break;
    case Request::kEnterLibcrypto:
      findings.stack_used =
          std::max(findings.stack_used, static_cast<size_t>(stack + kStackSize - lowest_written()));
      search_stack(below, " under a call of libcrypto, at depth ");
      std::fill(std::min(lowest_written(), below), below, kPaint);
      break;
    case Request::kLeaveLibcrypto: {
      unsigned char* from = lowest_written();
      if (from >= below) break;
      findings.libcrypto += search(from, below, &offset) != nullptr;
      std::fill(from, below, kPaint);
      break;
    }
    case Request::kOurBlock:
    case Request::kLibcryptoBlock: {
      const auto* bytes = static_cast<const unsigned char*>(block);
      const auto* end = bytes + malloc_usable_size(const_cast<void*>(block));
      const std::string* name = search(bytes, end, &offset);
      if (name == nullptr) break;
      if (request == Request::kLibcryptoBlock) {
        ++findings.libcrypto;
      } else {
        note(name, " in a freed block, at offset ", offset);
      }
      break;
    }
  }
  request = Request::kNone;
}

void run_body() { (*body)(); }

bool looks_at_blocks() { return is_watching && request == Request::kNone; }

void look_at(const void* freed, Request what) {
  if (freed == nullptr || !looks_at_blocks()) return;
  block = freed;
  ask(what);
}

// What the call allocated and did not free yet.
constexpr size_t kMostBlocks = 4096;
const void* live[kMostBlocks];
size_t num_live;

void note_allocated(const void* allocated) {
  if (looks_at_blocks() && num_live < kMostBlocks) live[num_live++] = allocated;
}

void forget(const void* gone) {
  const void** const found = std::find(live, live + num_live, gone);
  if (found != live + num_live) *found = live[--num_live];
}

void note_freed(const void* freed) {
  look_at(freed, Request::kOurBlock);
  forget(freed);
}

void search_live_blocks() {
  size_t offset;
  for (const void** at = live; at != live + num_live; ++at) {
    const auto* bytes = static_cast<const unsigned char*>(*at);
    const auto* end = bytes + malloc_usable_size(const_cast<void*>(*at));
    const std::string* name = search(bytes, end, &offset);
    if (name != nullptr) note(name, " in a lost block, at offset ", offset);
  }
}

void* crypto_malloc(size_t size, const char*, int) { return __real_malloc(size); }
void crypto_free(void* freed, const char*, int) {
  look_at(freed, Request::kLibcryptoBlock);
  __real_free(freed);
}
void* crypto_realloc(void* old, size_t size, const char*, int) {
  look_at(old, Request::kLibcryptoBlock);
  return __real_realloc(old, size);
}

}  // namespace

void add_secret(const std::string& name, const void* data, size_t size) {
  const auto* bytes = static_cast<const unsigned char*>(data);
  const std::string text(bytes, bytes + size);
  add_pieces(name, text);
  std::string reversed = text, lower = hex(text), upper = lower;
  for (char& c : upper) c = static_cast<char>(toupper(c));
  for (size_t i = 0; i + 4 <= size; i += 4) std::reverse(&reversed[i], &reversed[i] + 4);
  add_pieces(name + " in reversed words", reversed);
  add_pieces(name + " as hexadecimal text", lower);
  add_pieces(name + " as hexadecimal text", upper);
  std::string base64(4 * ((size + 2) / 3) + 1, '\0');
  EVP_EncodeBlock(reinterpret_cast<unsigned char*>(&base64[0]), bytes, static_cast<int>(size));
  add_pieces(name + " as Base64", base64);
}

Findings watch(const std::function<void()>& call) {
  if (stack == nullptr) {
    stack = static_cast<unsigned char*>(
        mmap(nullptr, kStackSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
  }
  memset(stack, kPaint, kStackSize);
  findings = {};
  findings.ours.reserve(10);
  body = &call;
  getcontext(&watched);
  watched.uc_stack.ss_sp = stack;
  watched.uc_stack.ss_size = kStackSize;
  watched.uc_link = &searcher;
  makecontext(&watched, run_body, 0);
  num_live = 0;
  is_watching = true;
  request = Request::kNone;
  do {
    serve();
    swapcontext(&searcher, &watched);
  } while (request != Request::kNone);
  is_watching = false;
  findings.stack_used =
      std::max(findings.stack_used, static_cast<size_t>(stack + kStackSize - lowest_written()));
  search_stack(stack + kStackSize, " on the stack, at depth ");
  search_live_blocks();
  return findings;
}

void hand_out(const void* handed) { forget(handed); }

void watch_libcrypto_blocks() {
  if (!CRYPTO_set_mem_functions(crypto_malloc, crypto_realloc, crypto_free)) abort();
  look_at_blocks(note_allocated, note_freed);
}

}  // namespace plx_test

using plx_test::ask;
using plx_test::Request;

#define AROUND(Result, name, parameters, arguments) \
  Result __real_##name parameters;                  \
  Result __wrap_##name parameters {                 \
    ask(Request::kEnterLibcrypto);                  \
    const auto result = __real_##name arguments;    \
    ask(Request::kLeaveLibcrypto);                  \
    return result;                                  \
  }
#define AROUND_VOID(name, parameters, arguments) \
  void __real_##name parameters;                 \
  void __wrap_##name parameters {                \
    ask(Request::kEnterLibcrypto);               \
    __real_##name arguments;                     \
    ask(Request::kLeaveLibcrypto);               \
  }

extern "C" {

using Bytes = unsigned char;
using Input = const unsigned char;

AROUND(int, EVP_EncryptInit_ex,
       (EVP_CIPHER_CTX * ctx, const EVP_CIPHER* cipher, ENGINE* engine, Input* key, Input* iv),
       (ctx, cipher, engine, key, iv))
AROUND(int, EVP_DecryptInit_ex,
       (EVP_CIPHER_CTX * ctx, const EVP_CIPHER* cipher, ENGINE* engine, Input* key, Input* iv),
       (ctx, cipher, engine, key, iv))
AROUND(int, EVP_EncryptUpdate, (EVP_CIPHER_CTX * ctx, Bytes* out, int* n, Input* in, int size),
       (ctx, out, n, in, size))
AROUND(int, EVP_DecryptUpdate, (EVP_CIPHER_CTX * ctx, Bytes* out, int* n, Input* in, int size),
       (ctx, out, n, in, size))
AROUND(int, EVP_EncryptFinal_ex, (EVP_CIPHER_CTX * ctx, Bytes* out, int* n), (ctx, out, n))
AROUND(int, EVP_DecryptFinal_ex, (EVP_CIPHER_CTX * ctx, Bytes* out, int* n), (ctx, out, n))
AROUND(int, EVP_EncodeUpdate, (EVP_ENCODE_CTX * ctx, Bytes* out, int* n, Input* in, int size),
       (ctx, out, n, in, size))
AROUND(int, EVP_DecodeUpdate, (EVP_ENCODE_CTX * ctx, Bytes* out, int* n, Input* in, int size),
       (ctx, out, n, in, size))
AROUND_VOID(EVP_EncodeFinal, (EVP_ENCODE_CTX * ctx, Bytes* out, int* n), (ctx, out, n))
AROUND(int, EVP_DecodeFinal, (EVP_ENCODE_CTX * ctx, Bytes* out, int* n), (ctx, out, n))
AROUND_VOID(EVP_CIPHER_CTX_free, (EVP_CIPHER_CTX * ctx), (ctx))
AROUND_VOID(EVP_ENCODE_CTX_free, (EVP_ENCODE_CTX * ctx), (ctx))
AROUND(int, PKCS5_PBKDF2_HMAC,
       (const char* pass, int pass_size, Input* salt, int salt_size, int iterations,
        const EVP_MD* digest, int size, Bytes* out),
       // Iterations cost time and leave nothing that fewer would not.
       (pass, pass_size, salt, salt_size, std::min(iterations, 2), digest, size, out))
AROUND(Bytes*, HMAC,
       (const EVP_MD* digest, const void* key, int key_size, Input* data, size_t size, Bytes* out,
        unsigned int* n),
       (digest, key, key_size, data, size, out, n))
AROUND(int, MD5_Update, (MD5_CTX * ctx, const void* data, size_t size), (ctx, data, size))
AROUND(int, MD5_Final, (Bytes * out, MD5_CTX* ctx), (out, ctx))

}  // extern "C"
