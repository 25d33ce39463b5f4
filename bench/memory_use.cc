// What each engine takes: heap blocks and bytes that live when its work is done and before it is
// freed, and the deepest stack. Prints one line a work, fields parted by tabs.
#include <malloc.h>
#include <plx/cipher.h>
#include <plx/container.h>
#include <plx/digest.h>
#include <plx/json.h>
#include <plx/securec.h>
#include <pthread.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <wchar.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "sample_documents.h"

// The C library's allocator under our count, for the library as well as for this program.
extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* block, size_t size);
void __libc_free(void* block);
}

namespace {

struct Heap {
  long blocks, bytes;
};
Heap g_now, g_most;

void* counted(void* block) {
  if (block == nullptr) return nullptr;
  ++g_now.blocks;
  g_now.bytes += static_cast<long>(malloc_usable_size(block) + sizeof(size_t));
  if (g_now.bytes > g_most.bytes) g_most = g_now;
  return block;
}

void uncounted(void* block) {
  if (block == nullptr) return;
  --g_now.blocks;
  g_now.bytes -= static_cast<long>(malloc_usable_size(block) + sizeof(size_t));
}

}  // namespace

extern "C" {

void* malloc(size_t size) noexcept { return counted(__libc_malloc(size)); }
void* calloc(size_t count, size_t size) noexcept { return counted(__libc_calloc(count, size)); }
void* realloc(void* block, size_t size) noexcept {
  uncounted(block);
  return counted(__libc_realloc(block, size));
}
void free(void* block) noexcept {
  uncounted(block);
  __libc_free(block);
}

}  // extern "C"

namespace {

constexpr size_t kStack = 1 << 20;
constexpr unsigned char kPaint = 0xA5;

struct Run {
  const std::function<void()>* work;
  unsigned char* stack;
  size_t depth;
};

// Paints the stack below its own frame and looks how much of that the work changes. A little is
// left out for the call of memset itself.
void* run_on_painted_stack(void* argument) {
  constexpr ptrdiff_t kOwnCalls = 128;
  Run& run = *static_cast<Run*>(argument);
  auto* const here = static_cast<unsigned char*>(__builtin_frame_address(0)) - kOwnCalls;
  memset(run.stack, kPaint, static_cast<size_t>(here - run.stack));
  (*run.work)();
  const auto* const deepest =
      std::find_if(run.stack, here, [](unsigned char byte) { return byte != kPaint; });
  run.depth = static_cast<size_t>(here - deepest);
  return nullptr;
}

size_t stack_depth(const std::function<void()>& work) {
  void* const stack =
      mmap(nullptr, kStack, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (stack == MAP_FAILED) abort();
  Run run = {&work, static_cast<unsigned char*>(stack), 0};
  pthread_attr_t attributes;
  pthread_t thread;
  pthread_attr_init(&attributes);
  pthread_attr_setstack(&attributes, stack, kStack);
  if (pthread_create(&thread, &attributes, run_on_painted_stack, &run) != 0) abort();
  pthread_join(thread, nullptr);
  munmap(stack, kStack);
  return run.depth;
}

// Heap at its most while `work` runs, which must free what it takes.
void report(const std::string& name, const std::function<void()>& work) {
  work();  // what is loaded or bound at a first call is not the engine's
  g_most = g_now;
  const Heap before = g_now;
  work();
  const Heap most = {g_most.blocks - before.blocks, g_most.bytes - before.bytes};
  printf("%s\t%ld\t%ld\t%zu\n", name.c_str(), most.blocks, most.bytes, stack_depth(work));
}

void report_securec() {
  static char text[1 << 16];
  static wchar_t wide[256];
  report("memcpy_s, 64 KiB", [] {
    static char from[sizeof text];
    (void)memcpy_s(text, sizeof text, from, sizeof from);
  });
  report("snprintf_s, numbers and text", [] {
    (void)snprintf_s(text, sizeof text, sizeof text - 1, "%5d %s %u %lld", 1, "x", 2u, 3LL);
  });
  report("snprintf_s, %.3f",
         [] { (void)snprintf_s(text, sizeof text, sizeof text - 1, "%.3f", 3.14159); });
  report("snprintf_s, %.300f",
         [] { (void)snprintf_s(text, sizeof text, sizeof text - 1, "%.300f", 1e300); });
  report("swprintf_s, numbers", [] { (void)swprintf_s(wide, 256, L"%5d %u", 1, 2u); });
  report("sscanf_s, numbers", [] {
    int a, b;
    (void)sscanf_s("12 -345", "%d %d", &a, &b);
  });
  report("sscanf_s, %lf of 17 digits", [] {
    double value;
    (void)sscanf_s("0.30000000000000004", "%lf", &value);
  });
  report("swscanf_s, numbers", [] {
    int a;
    (void)swscanf_s(L"12", L"%d", &a);
  });
}

void report_digest() {
  static unsigned char data[1 << 16], out[1 << 17];
  report("SHA-256, 64 KiB", [] { sha256_get(out, data, sizeof data); });
  report("HMAC-SHA-256, 64 KiB", [] { hmac_sha256_get(out, data, sizeof data, data, 16); });
  report("triple DES, 64 KiB", [] {
    static Des3Context ctx;
    PLX_3des_set3keys(&ctx, data, data + 8, data + 16);
    PLX_3des_encrypt(&ctx, data, out, sizeof data);
  });
  report("Base64, 64 KiB",
         [] { PLX_b64_encode(data, sizeof data, reinterpret_cast<char*>(out), sizeof out); });
}

void report_json() {
  const auto parse = [](const std::string& name, const std::string& text) {
    report(name, [&text] { PLX_FreeJsonValue(PLX_ParseJsonString(text.c_str())); });
  };
  // The difference of two rows is what one more node takes.
  for (size_t count : {100, 101}) {
    parse("JSON, array of " + std::to_string(count), plx_test::container(count, "1", false));
    parse("JSON, object of " + std::to_string(count), plx_test::container(count, "1", true));
  }
  parse("JSON, request of 200 bytes", plx_test::sample_request());
  parse("JSON, configuration of 19 KiB", plx_test::sample_configuration());
  std::string nested = "1";
  for (int depth = 1; depth < 16; ++depth) {
    nested = depth % 2 == 0 ? '[' + nested + ']' : "{\"in\":" + nested + '}';
  }
  parse("JSON, 15 levels", nested);
}

void report_containers() {
  static int element;
  for (int count : {16, 17, 1000}) {
    report("array of " + std::to_string(count), [count] {
      PLX_array* array = PLX_array_create(nullptr);
      for (int i = 0; i < count; ++i) PLX_array_append(array, &element);
      PLX_array_destroyWithoutClean(array);
    });
  }
  static std::vector<std::string> keys;
  for (int i = 0; i < 1001; ++i) keys.push_back(std::to_string(i));
  for (size_t count : {1000u, 1001u}) {
    report("hash table of " + std::to_string(count) + " in 512 buckets", [count] {
      PLX_hashtable* table =
          PLX_hashtable_create(512, PLX_stringHashValue, PLX_stringHashCompare, nullptr);
      for (size_t i = 0; i < count; ++i) PLX_hashtable_insert(table, keys[i].c_str(), &element);
      PLX_hashtable_destroy(table);
    });
  }
  static std::vector<int> values(100000);
  for (size_t i = 0; i < values.size(); ++i) values[i] = static_cast<int>(i * 7919 % 100003);
  report("sort of 100000", [] {
    PLX_array* array = PLX_array_create(nullptr);
    PLX_array_preAppend(array, static_cast<int>(values.size()));
    for (int& value : values) PLX_array_append(array, &value);
    PLX_array_sort(array, [](const void* a, const void* b) {
      return *static_cast<const int*>(a) - *static_cast<const int*>(b);
    });
    PLX_array_destroyWithoutClean(array);
  });
}

void report_cipher() {
  static char out[2100];
  for (size_t size : {100u, 1000u}) {
    const std::string request =
        R"({"encryptMode":"CBC","cipherSize":128,"paddingMode":"PKCS5Padding",)"
        R"("cipherPrefix":"twelve-chars","IVPrefix":"twelve-more.","plainText":")" +
        std::string(size, 'a') + "\"}";
    report("request of " + std::to_string(size) + " bytes, encrypt (libcrypto's included)",
           [&request] { (void)PLX_AesEncry(request.c_str(), out); });
  }
}

}  // namespace

int main() {
  report_securec();
  report_digest();
  report_json();
  report_containers();
  report_cipher();
  return 0;
}
