#include <plx/container.h>
#include <stdio.h>

#include "container/alloc.h"
#include "internal/checked_size.h"

// Callers read the fields directly.
static_assert(offsetof(PLX_bufList, usedCount) == 0);
static_assert(offsetof(PLX_bufList, bufNum) == 4);
static_assert(offsetof(PLX_bufList, bufSize) == 8);
static_assert(offsetof(PLX_bufList, data) == (sizeof(void*) == 8 ? 16 : 12));
static_assert(offsetof(PLX_bufList, nodes) == (sizeof(void*) == 8 ? 24 : 16));
static_assert(offsetof(PLX_bufList, current) == (sizeof(void*) == 8 ? 32 : 20));
static_assert(offsetof(PLX_bufList, freeHead) == (sizeof(void*) == 8 ? 40 : 24));
static_assert(offsetof(PLX_bufList, usedHead) == (sizeof(void*) == 8 ? 48 : 28));
static_assert(offsetof(PLX_bufList, usedTail) == (sizeof(void*) == 8 ? 56 : 32));
static_assert(sizeof(PLX_bufList) == (sizeof(void*) == 8 ? 64 : 36));
static_assert(offsetof(PLX_bufList_node, buf) == 0);
static_assert(offsetof(PLX_bufList_node, len) == sizeof(void*));
static_assert(offsetof(PLX_bufList_node, next) == 2 * sizeof(void*));
static_assert(sizeof(PLX_bufList_node) == 3 * sizeof(void*));

namespace plx::container {
namespace {

using List = PLX_bufList;
using Node = PLX_bufList_node;

// Callers' tools read these lines and their fixed numbers.
enum InitLine { kNoRecord = 30, kNoNodes = 38, kNoData = 44, kCreated = 65 };

void print_notice(InitLine line) { printf("%s at %d line\n", "PLX_bufList_init", line); }

void print_error(InitLine line) { printf("%s at %d line,error!\n", "PLX_bufList_init", line); }

// Zeroed memory for `count` objects of `size` bytes. Null when either is below 1: their product
// is then 0 or, negative numbers being huge as sizes, above what the allocator gives.
void* allocate_many(int count, int size) {
  return allocate_zeroed(
      saturating_multiply(static_cast<size_t>(count), static_cast<size_t>(size)));
}

// Cuts the data block into buffers and puts them all on the free list, in index order.
void link_nodes(List* list) {
  for (int i = 0; i < list->bufNum; ++i) {
    Node* const node = &list->nodes[i];
    node->buf = list->data + static_cast<size_t>(i) * static_cast<size_t>(list->bufSize);
    node->len = list->bufSize;
    node->next = i + 1 < list->bufNum ? node + 1 : nullptr;
  }
  list->freeHead = list->nodes;
}

void free_list(List* list) {
  release_block(list->nodes);
  release_block(list->data);
  release_block(list);
}

List* create_list(int num_bufs, int buf_size) {
  auto* list = allocate_zeroed_record<List>();
  if (list == nullptr) {
    print_error(kNoRecord);
    return nullptr;
  }
  list->nodes = static_cast<Node*>(allocate_many(num_bufs, sizeof(Node)));
  if (list->nodes == nullptr) {
    free_list(list);
    print_error(kNoNodes);
    return nullptr;
  }
  list->data = static_cast<unsigned char*>(allocate_many(num_bufs, buf_size));
  if (list->data == nullptr) {
    print_notice(kNoData);  // not marked as an error, and callers' tools know it so
    free_list(list);
    return nullptr;
  }
  list->bufNum = num_bufs;
  list->bufSize = buf_size;
  link_nodes(list);
  print_notice(kCreated);
  return list;
}

void enqueue(List* list, Node* node) {
  if (list->usedTail != nullptr) {
    list->usedTail->next = node;
  } else {
    list->usedHead = node;
  }
  list->usedTail = node;
  ++list->usedCount;
}

// Takes the front node off the queue and puts it back into the pool; null when there is none.
Node* dequeue(List* list) {
  Node* const node = list->usedHead;
  if (node == nullptr || list->usedCount == 0) return nullptr;
  --list->usedCount;
  list->usedHead = node->next;
  if (list->usedHead == nullptr) list->usedTail = nullptr;
  node->next = list->freeHead;
  list->freeHead = node;
  return node;
}

}  // namespace
}  // namespace plx::container

using namespace plx::container;

PLX_bufList* PLX_bufList_init(int bufNum, int bufSize) { return create_list(bufNum, bufSize); }

void PLX_bufList_realse(PLX_bufList* list) {
  if (list != nullptr) free_list(list);
}

int PLX_bufList_getUseableBuf(PLX_bufList* list, void** buf) {
  if (list == nullptr || buf == nullptr) return -1;
  if (list->freeHead == nullptr) return -2;
  list->current = list->freeHead;
  list->freeHead = list->current->next;
  *buf = list->current->buf;
  return 0;
}

int PLX_bufList_push_back(PLX_bufList* list, const void* buf, int len) {
  if (list == nullptr || buf == nullptr) return -1;
  if (len > list->bufSize) return -3;
  // The node handed out last is queued, whatever became of it since: callers depend on it.
  PLX_bufList_node* const node = list->current;
  if (node == nullptr) return -1;
  node->next = nullptr;
  node->len = len;
  node->buf = const_cast<void*>(buf);
  enqueue(list, node);
  return 0;
}

int PLX_bufList_pop_front(PLX_bufList* list, void** buf, int* len) {
  if (list == nullptr || buf == nullptr || len == nullptr) return -1;
  const PLX_bufList_node* const node = dequeue(list);
  if (node == nullptr) return -1;
  *buf = node->buf;
  *len = node->len;
  return 0;
}

int PLX_bufList_front(PLX_bufList* list, void** buf, int* len) {
  if (list == nullptr || list->usedHead == nullptr) return -1;
  if (buf != nullptr) *buf = list->usedHead->buf;
  if (len != nullptr) *len = list->usedHead->len;
  return 0;
}

int PLX_bufList_clearAllBufList(PLX_bufList* list) {
  if (list == nullptr) return -1;
  while (dequeue(list) != nullptr) {
  }
  list->usedCount = 0;
  return 0;
}
