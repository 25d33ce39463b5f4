#include "container/hash_table.h"

#include "container/alloc.h"
#include "internal/checked_size.h"

// Callers read the fields directly.
static_assert(offsetof(PLX_hashtable, buckets) == 0);
static_assert(offsetof(PLX_hashtable, bucketCount) == sizeof(void*));
static_assert(offsetof(PLX_hashtable, nodeCount) == sizeof(void*) + 4);
static_assert(offsetof(PLX_hashtable, enumBucket) == sizeof(void*) + 8);
static_assert(offsetof(PLX_hashtable, enumNode) == (sizeof(void*) == 8 ? 24 : 16));
static_assert(offsetof(PLX_hashtable, hashFn) == (sizeof(void*) == 8 ? 32 : 20));
static_assert(offsetof(PLX_hashtable, compareFn) == (sizeof(void*) == 8 ? 40 : 24));
static_assert(offsetof(PLX_hashtable, freeFn) == (sizeof(void*) == 8 ? 48 : 28));
static_assert(sizeof(PLX_hashtable) == (sizeof(void*) == 8 ? 56 : 32));
static_assert(offsetof(PLX_hashtable_node, value) == 0);
static_assert(offsetof(PLX_hashtable_node, key) == sizeof(void*));
static_assert(offsetof(PLX_hashtable_node, next) == 2 * sizeof(void*));
static_assert(sizeof(PLX_hashtable_node) == 3 * sizeof(void*));

namespace plx::container {
namespace {

using Node = PLX_hashtable_node;

constexpr uint32_t kDefaultBuckets = 512;
constexpr uint32_t kFetchAhead = 8;

Node** allocate_buckets(uint32_t count) {
  return static_cast<Node**>(allocate_zeroed(saturating_multiply(count, sizeof(Node*))));
}

// The head of the chain that `key` belongs to; null when the hash answers out of range.
Node** chain_of(const PLX_hashtable* table, const void* key) {
  const uint32_t index = table->hashFn(key, table->bucketCount);
  return index < table->bucketCount ? &table->buckets[index] : nullptr;
}

// The link to the first node under `key`; one that holds null when there is none.
Node** link_to(const PLX_hashtable* table, Node** chain, const void* key) {
  while (*chain != nullptr && table->compareFn((*chain)->key, key) != 0) chain = &(*chain)->next;
  return chain;
}

void remove_first(const PLX_hashtable* table, Node** link) {
  Node* const node = *link;
  *link = node->next;
  if (table->freeFn != nullptr) table->freeFn(node->value);
  release_block(node);
}

void clear_table(PLX_hashtable* table) {
  if (table == nullptr || table->buckets == nullptr) return;
  // Neither the count nor the enumeration is reset: callers depend on the count.
  for (uint32_t i = 0; i < table->bucketCount; ++i) {
    // Nodes lie anywhere; those of the buckets to come are fetched meanwhile.
    if (table->bucketCount - i > kFetchAhead) __builtin_prefetch(table->buckets[i + kFetchAhead]);
    while (table->buckets[i] != nullptr) remove_first(table, &table->buckets[i]);
  }
}

}  // namespace

void begin_enumeration(PLX_hashtable* table) {
  if (table->buckets == nullptr) return;
  table->enumBucket = 0;
  table->enumNode = table->buckets[0];
}

void* next_value(PLX_hashtable* table) {
  while (table->enumNode == nullptr) {
    if (table->buckets == nullptr || table->enumBucket >= table->bucketCount) return nullptr;
    if (++table->enumBucket == table->bucketCount) return nullptr;
    table->enumNode = table->buckets[table->enumBucket];
  }
  void* const value = table->enumNode->value;
  table->enumNode = table->enumNode->next;
  return value;
}

}  // namespace plx::container

using namespace plx::container;

extern "C" {

PLX_hashtable* PLX_hashtable_create(uint32_t bucketCount, uint32_t (*hashFn)(const void*, uint32_t),
                                    int (*compareFn)(const void*, const void*),
                                    void (*freeFn)(void*)) {
  if (hashFn == nullptr || compareFn == nullptr) return nullptr;
  auto* table = plx::allocate_zeroed_record<PLX_hashtable>();
  if (table == nullptr) return nullptr;
  table->bucketCount = bucketCount != 0 ? bucketCount : kDefaultBuckets;
  table->buckets = allocate_buckets(table->bucketCount);
  if (table->buckets == nullptr) {
    plx::release_block(table);
    return nullptr;
  }
  table->hashFn = hashFn;
  table->compareFn = compareFn;
  table->freeFn = freeFn;
  return table;
}

int PLX_hashtable_insert(PLX_hashtable* table, const void* key, void* value) {
  if (table == nullptr || key == nullptr || value == nullptr) return -1;
  PLX_hashtable_node** const chain = chain_of(table, key);
  if (chain == nullptr) return -1;
  // Not zeroed: all of it is set below.
  auto* const node = static_cast<PLX_hashtable_node*>(malloc(sizeof(PLX_hashtable_node)));
  if (node == nullptr) return -1;
  // An equal key is not looked for: callers depend on the newer node hiding the older.
  *node = {value, key, *chain};
  *chain = node;
  ++table->nodeCount;
  return 0;
}

void* PLX_hashtable_find(const PLX_hashtable* table, const void* key) {
  if (table == nullptr || key == nullptr) return nullptr;
  PLX_hashtable_node** const chain = chain_of(table, key);
  if (chain == nullptr) return nullptr;
  const PLX_hashtable_node* const node = *link_to(table, chain, key);
  return node != nullptr ? node->value : nullptr;
}

void PLX_hashtable_delete(PLX_hashtable* table, const void* key) {
  if (table == nullptr || key == nullptr) return;
  // The index is taken as it comes, unlike above.
  PLX_hashtable_node** const chain = &table->buckets[table->hashFn(key, table->bucketCount)];
  PLX_hashtable_node** const link = link_to(table, chain, key);
  if (*link == nullptr) return;
  remove_first(table, link);
  --table->nodeCount;
}

uint32_t PLX_hashtable_getNodeCount(const PLX_hashtable* table) {
  return table != nullptr ? table->nodeCount : 0;
}

void PLX_hashtable_clear(PLX_hashtable* table) { clear_table(table); }

void PLX_hashtable_destroy(PLX_hashtable* table) {
  if (table == nullptr) return;
  clear_table(table);
  plx::release_block(table->buckets);
  plx::release_block(table);
}

void PLX_hashtable_enumBegin(PLX_hashtable* table) {
  if (table != nullptr) begin_enumeration(table);
}

void* PLX_hashtable_enumNext(PLX_hashtable* table) {
  return table != nullptr ? next_value(table) : nullptr;
}

}  // extern "C"
