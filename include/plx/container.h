/* Allocation, containers and text helpers.
 *
 * Heap blocks that the library hands out come from PLX_malloc and go back through PLX_free, unless
 * a function says otherwise. Containers belong to one thread at a time; nothing here locks.
 */
#ifndef PLX_CONTAINER_H
#define PLX_CONTAINER_H

#include <plx/export.h>
#include <stddef.h>
#include <stdint.h>

PLX_BEGIN_DECLS

/* ---- Allocation ----------------------------------------------------------------------------- */

/* PLX_malloc returns a new block of `size` bytes, all zero, or null when `size` is 0, is above
 * 0x7FFFFFFF, or memory is short. Release it with PLX_free. */
PLX_API void* PLX_malloc(size_t size) PLX_CHECK_RESULT;

/* PLX_realloc resizes `block` as the C realloc does and returns it, possibly moved, or null with
 * `block` still valid. A `size` of 0 returns null and leaves `block` alone: unlike the C realloc it
 * never frees. */
PLX_API void* PLX_realloc(void* block, size_t size) PLX_CHECK_RESULT;

/* PLX_reallocMem grows `oldBlock` (may be null), of which the first `oldLen` bytes are kept, to
 * `newSize` bytes. The bytes behind them are indeterminate. Always consumes `oldBlock`: when
 * `newSize` is not above `oldLen`, is above 0x7FFFFFFF, or memory is short, `oldBlock` is freed and
 * null returned, so a null result means that the data is lost. */
PLX_API void* PLX_reallocMem(void* oldBlock, size_t newSize, size_t oldLen) PLX_CHECK_RESULT;

/* PLX_free releases a block of this family. Null is ignored. */
PLX_API void PLX_free(void* block);

/* PLX_strdup returns a heap copy of `str`, to be released with PLX_free; null for null or when
 * memory is short. */
PLX_API char* PLX_strdup(const char* str) PLX_CHECK_RESULT;

/* PLX_posix_memalign and PLX_valloc are the C library's functions of those names. */
PLX_API int PLX_posix_memalign(void** out, size_t alignment, size_t size) PLX_CHECK_RESULT;
PLX_API void* PLX_valloc(size_t size) PLX_CHECK_RESULT;

/* ---- Dynamic array -------------------------------------------------------------------------- */

/* PLX_array is a growable array of element pointers.
 *
 * Owns its slots, and an element only as far as it releases it: clean, destroy, delete and modify
 * pass an element that is not null to `cleanFn`, or to PLX_free when there is none; nothing else
 * does. Results are 0 and -1 unless said otherwise.
 *
 * Growth: capacities are multiples of 16 (but that of a copy), and growing adds 16 slots at a time.
 * Appending a million elements one by one thus reallocates 62,500 times, and where the allocator
 * has to move the block each time, copies 250 GB of pointers on the way (125 GB on 32-bit
 * machines). Whoever knows the number calls PLX_array_preAppend first and pays one allocation.
 *
 * Any growth moves the slots: `items` read before it is stale after it. A growth that fails for
 * want of memory loses them: it returns -1 and leaves `items` null with `count` as it was; look-ups
 * then find nothing, and the next call that needs room starts on fresh slots that are null. A
 * growth whose capacity does not fit an int returns -1 and changes nothing.
 *
 * Costs: append (with room), getIndex, modify and exchangeElement are constant; insert, delete and
 * move shift the slots between, in one block move; find is linear. */
typedef struct PLX_array {
  int32_t count;                  /* elements in use, in slots 0 to count - 1 */
  int32_t capacity;               /* slots allocated */
  void** items;                   /* the slots; null until the first growth */
  void (*cleanFn)(void* element); /* releases an element; null stands for PLX_free */
} PLX_array;

/* PLX_array_create returns a new empty array, or null when memory is short. `cleanFn` may be null.
 * Release it with PLX_array_destroy or PLX_array_destroyWithoutClean. */
PLX_API PLX_array* PLX_array_create(void (*cleanFn)(void* element)) PLX_CHECK_RESULT;

/* PLX_array_clean releases the elements in index order and then the slots. The array is empty
 * afterwards and keeps its `cleanFn`. */
PLX_API void PLX_array_clean(PLX_array* array);

/* PLX_array_destroy cleans and frees `array`. */
PLX_API void PLX_array_destroy(PLX_array* array);

/* PLX_array_destroyWithoutClean frees `array` and its slots; the elements stay the caller's. */
PLX_API void PLX_array_destroyWithoutClean(PLX_array* array);

/* PLX_array_getCount returns the number of elements, or -1 for null. */
PLX_API int PLX_array_getCount(const PLX_array* array);

/* PLX_array_append stores `element`, which may be null, behind the last one. */
PLX_API int PLX_array_append(PLX_array* array, void* element) PLX_CHECK_RESULT;

/* PLX_array_getIndex returns the element at `index`; null outside 0 to count - 1. */
PLX_API void* PLX_array_getIndex(const PLX_array* array, int index);

/* PLX_array_insert stores `element`, which may be null, before the one at `index` and moves that
 * one and its followers up. An `index` above the count appends; a negative one inserts at 0. */
PLX_API int PLX_array_insert(PLX_array* array, void* element, int index) PLX_CHECK_RESULT;

/* PLX_array_modify releases the element at `index` and stores `element`, which must not be null,
 * in its place. Storing the element that is already there therefore leaves a released one.
 * `index` may equal the count: the slot behind the last element is then written without being
 * counted, and a pointer that stands there is released first. After a deletion from the middle that
 * pointer is a second copy of the last element, which is still in use. Returns -1 for an `index`
 * below 0 or above the count. */
PLX_API int PLX_array_modify(PLX_array* array, int index, void* element) PLX_CHECK_RESULT;

/* PLX_array_preAppend makes room for `n` more elements, so that appending them allocates nothing.
 * With room for them already, or `n` below 1, it does nothing and returns 0. */
PLX_API int PLX_array_preAppend(PLX_array* array, int n) PLX_CHECK_RESULT;

/* PLX_array_delete releases the element at `index` and closes the gap; indexes outside 0 to
 * count - 1 are ignored. PLX_array_deleteWithoutClean closes the gap and leaves the element to the
 * caller. Neither gives memory back. */
PLX_API void PLX_array_delete(PLX_array* array, int index);
PLX_API void PLX_array_deleteWithoutClean(PLX_array* array, int index);

/* PLX_array_sort sorts the elements in place so that those for which `compare` answers below 0 come
 * first. `compare` receives two elements (not pointers to slots, as with qsort). The order of equal
 * elements is not kept, but is the same for the same input. No memory is allocated.
 * A quicksort that takes the middle element as pivot: n log2 n comparisons on most inputs, sorted
 * ones included; n * n / 2 when all elements are equal or the order is chosen against it. The stack
 * stays within log2(n) small frames in every case. A `compare` without an order gives some order
 * and no harm. */
PLX_API void PLX_array_sort(PLX_array* array, int (*compare)(const void* a, const void* b));

/* PLX_array_find returns the index of the first element that is not null and for which
 * `compare(key, element)` is 0; -1 when there is none or an argument is null. */
PLX_API int PLX_array_find(const PLX_array* array, const void* key,
                           int (*compare)(const void* key, const void* element));

/* PLX_array_exchangeElement swaps the elements at `i` and `j`. Nothing is tested: `array` must not
 * be null and both indexes must be within its capacity. */
PLX_API void PLX_array_exchangeElement(PLX_array* array, int i, int j);

/* PLX_array_move takes the element at `from` out and puts it in at `to`; those between shift by
 * one. Indexes above the last are taken as the last. Returns -1 for null or a negative index. */
PLX_API int PLX_array_move(PLX_array* array, int from, int to);

/* PLX_array_createFromArray returns a new array with the same elements and the same `cleanFn`, or
 * null when `array` is null or empty or memory is short. The elements are shared: only one of the
 * two arrays may clean them. The capacity of the copy is its count, so that the next append grows
 * it. */
PLX_API PLX_array* PLX_array_createFromArray(const PLX_array* array) PLX_CHECK_RESULT;

/* ---- Hash table ----------------------------------------------------------------------------- */

/* One entry of a hash table. */
typedef struct PLX_hashtable_node {
  void* value;                     /* to be released by freeFn */
  const void* key;                 /* the caller's */
  struct PLX_hashtable_node* next; /* the next older one of its bucket */
} PLX_hashtable_node;

/* PLX_hashtable is a chained hash table with a number of buckets that is fixed at creation.
 *
 * Owns its nodes, one heap block each, and never copies or frees a key: each key must stay as it
 * is while its node is in the table (making it a part of the value is the usual way). Values go to
 * `freeFn`, when there is one, as their nodes are removed: one by PLX_hashtable_delete, all of them
 * by clear and destroy, bucket by bucket and within a bucket the newest first.
 *
 * Costs: insert is one allocation; find and delete walk one chain, nodes / buckets long on
 * average. The table never grows its buckets, so choose about as many as there will be nodes.
 * Values stay where they are; only the removal of its own node invalidates one. */
typedef struct PLX_hashtable {
  PLX_hashtable_node** buckets; /* the chains' heads */
  uint32_t bucketCount;         /* fixed at creation */
  uint32_t nodeCount;           /* nodes inserted minus nodes deleted; clear leaves it as it was */
  uint32_t enumBucket;          /* enumeration: the current bucket */
  PLX_hashtable_node* enumNode; /* enumeration: the next node */
  uint32_t (*hashFn)(const void* key, uint32_t bucketCount);      /* a bucket's index */
  int (*compareFn)(const void* storedKey, const void* wantedKey); /* 0 when equal */
  void (*freeFn)(void* value);                                    /* may be null */
} PLX_hashtable;

/* PLX_hashtable_create returns a new table of `bucketCount` buckets (0 stands for 512), or null
 * when `hashFn` or `compareFn` is null, memory is short, or the bucket array would be larger than
 * 0x7FFFFFFF bytes. `hashFn` must answer below `bucketCount`. */
PLX_API PLX_hashtable* PLX_hashtable_create(
    uint32_t bucketCount, uint32_t (*hashFn)(const void* key, uint32_t bucketCount),
    int (*compareFn)(const void* storedKey, const void* wantedKey),
    void (*freeFn)(void* value)) PLX_CHECK_RESULT;

/* PLX_hashtable_insert adds a node for `key` and `value` and returns 0, or -1 when a pointer is
 * null, `hashFn` answers out of range, or memory is short. Equal keys are not looked for: a second
 * node hides the first until it is deleted. */
PLX_API int PLX_hashtable_insert(PLX_hashtable* table, const void* key,
                                 void* value) PLX_CHECK_RESULT;

/* PLX_hashtable_find returns the value inserted last under `key`, or null when there is none, a
 * pointer is null, or `hashFn` answers out of range. */
PLX_API void* PLX_hashtable_find(const PLX_hashtable* table, const void* key);

/* PLX_hashtable_delete removes the node inserted last under `key`, if there is one, and passes its
 * value to `freeFn`. Unlike insert and find it takes the answer of `hashFn` untested: one that is
 * out of range reads outside the table. */
PLX_API void PLX_hashtable_delete(PLX_hashtable* table, const void* key);

/* PLX_hashtable_getNodeCount returns `nodeCount`, or 0 for null. After PLX_hashtable_clear it still
 * is the number from before. */
PLX_API uint32_t PLX_hashtable_getNodeCount(const PLX_hashtable* table);

/* PLX_hashtable_clear removes every node. `nodeCount` and the enumeration stay as they were: call
 * PLX_hashtable_enumBegin before enumerating again. */
PLX_API void PLX_hashtable_clear(PLX_hashtable* table);

/* PLX_hashtable_destroy clears and frees `table`. */
PLX_API void PLX_hashtable_destroy(PLX_hashtable* table);

/* PLX_hashtable_enumBegin starts an enumeration; PLX_hashtable_enumNext returns the next value, or
 * null at the end, as often as it is called: buckets in index order, within a bucket the newest
 * first. There is one position per table. Inserting during an enumeration may or may not show the
 * new value; deleting the node that comes next leaves a stale position. */
PLX_API void PLX_hashtable_enumBegin(PLX_hashtable* table);
PLX_API void* PLX_hashtable_enumNext(PLX_hashtable* table);

/* PLX_intHashValue and PLX_intHashCompare serve keys that point to a uint32_t: the number modulo
 * `bucketCount`, which must not be 0, and equality. A null key hashes to 0 and equals every key. */
PLX_API uint32_t PLX_intHashValue(const void* key, uint32_t bucketCount);
PLX_API int PLX_intHashCompare(const void* a, const void* b);

/* PLX_stringHashValue and PLX_stringHashCompare serve keys that are C strings. The hash (times 131
 * plus the next byte, 31 bits of it, modulo `bucketCount`, which must not be 0) takes ASCII letters
 * as upper case, the comparison does not: Key and KEY share a bucket and are two keys. A null or
 * empty key hashes to 0; a null key equals none, itself included. Both compare functions return 0
 * for equal and 1 for different keys. */
PLX_API uint32_t PLX_stringHashValue(const void* key, uint32_t bucketCount);
PLX_API int PLX_stringHashCompare(const void* a, const void* b);

/* PLX_array_createFromHashTable returns a new array with the values of `table` in the order of its
 * enumeration, whose position is lost; null when `table` is null, its `nodeCount` is 0, or memory
 * is short. The values are shared with the table: only one of the two may release them. */
PLX_API PLX_array* PLX_array_createFromHashTable(PLX_hashtable* table,
                                                 void (*cleanFn)(void* element)) PLX_CHECK_RESULT;

PLX_END_DECLS

/* ---- Buffer list ---------------------------------------------------------------------------- */

/* One buffer of a list. */
typedef struct PLX_bufList_node {
  void* buf;                     /* its bytes */
  int32_t len;                   /* bytes in use */
  struct PLX_bufList_node* next; /* the next free one, or the next in the queue */
} PLX_bufList_node;

/* PLX_bufList is a pool of equal buffers with a queue of filled ones: first in, first out. Nothing
 * is allocated after its creation, and every call but init and clearAllBufList is constant.
 *
 * A producer takes a buffer with getUseableBuf, fills it and queues it with push_back. A consumer
 * looks at the front and takes it with pop_front. The list owns its buffers throughout; a taken one
 * is back in the pool at once and keeps its contents until the next getUseableBuf hands it out,
 * which is the next one it hands out.
 *
 * The functions are exported under symbols that carry their parameter types; C callers reach them
 * by the same plain names. */
typedef struct PLX_bufList {
  int32_t usedCount;          /* buffers now queued */
  int32_t bufNum;             /* buffers in the pool */
  int32_t bufSize;            /* bytes in each */
  unsigned char* data;        /* the block that the buffers are cut from */
  PLX_bufList_node* nodes;    /* one for each buffer */
  PLX_bufList_node* current;  /* the node that getUseableBuf handed out last */
  PLX_bufList_node* freeHead; /* last in, first out */
  PLX_bufList_node* usedHead; /* front of the queue */
  PLX_bufList_node* usedTail; /* back of the queue */
} PLX_bufList;

/* PLX_bufList_init returns a new list of `bufNum` buffers of `bufSize` bytes, all zero, or null
 * when a number is below 1, the pool would be larger than 0x7FFFFFFF bytes, or memory is short.
 * Prints one line to standard output in every case:
 *   PLX_bufList_init at 30 line,error!   no memory for the list
 *   PLX_bufList_init at 38 line,error!   `bufNum` refused, or no memory for the nodes
 *   PLX_bufList_init at 44 line          `bufSize` refused, or no memory for the buffers
 *   PLX_bufList_init at 65 line          success */
PLX_API PLX_bufList* PLX_bufList_init(int bufNum, int bufSize)
    PLX_TYPED("_Z16PLX_bufList_initii") PLX_CHECK_RESULT;

/* PLX_bufList_realse frees `list` with all its buffers. The name is spelled so. */
PLX_API void PLX_bufList_realse(PLX_bufList* list)
    PLX_TYPED("_Z18PLX_bufList_realseP11PLX_bufList");

/* PLX_bufList_getUseableBuf takes a free buffer of `bufSize` bytes into `*buf`. Returns 0; -1 when
 * a pointer is null; -2 when no buffer is free. Taking a second buffer before the first is queued
 * loses the first until the list is freed. */
PLX_API int PLX_bufList_getUseableBuf(PLX_bufList* list, void** buf)
    PLX_TYPED("_Z25PLX_bufList_getUseableBufP11PLX_bufListPPv") PLX_CHECK_RESULT;

/* PLX_bufList_push_back queues the buffer that getUseableBuf handed out last, as `buf` with `len`
 * bytes. `buf` is stored, not copied: a foreign pointer takes the place of that buffer in the pool
 * from then on. Each call needs a getUseableBuf of its own; a second one queues the same buffer
 * twice, which tangles the queue. A negative `len` is stored as it is.
 * Returns 0; -1 when a pointer is null or no buffer was ever taken; -3, with nothing changed, when
 * `len` is above `bufSize`. */
PLX_API int PLX_bufList_push_back(PLX_bufList* list, const void* buf, int len)
    PLX_TYPED("_Z21PLX_bufList_push_backP11PLX_bufListPKvi") PLX_CHECK_RESULT;

/* PLX_bufList_pop_front takes the front buffer into `*buf` and `*len` and puts it back into the
 * pool. Returns 0, or -1 when a pointer is null or the queue is empty. */
PLX_API int PLX_bufList_pop_front(PLX_bufList* list, void** buf, int* len)
    PLX_TYPED("_Z21PLX_bufList_pop_frontP11PLX_bufListPPvPi") PLX_CHECK_RESULT;

/* PLX_bufList_front stores the front buffer into `*buf` and `*len`, each unless null, and leaves it
 * queued. Returns 0, or -1 when `list` is null or the queue is empty. */
PLX_API int PLX_bufList_front(PLX_bufList* list, void** buf, int* len)
    PLX_TYPED("_Z17PLX_bufList_frontP11PLX_bufListPPvPi") PLX_CHECK_RESULT;

/* PLX_bufList_clearAllBufList puts every queued buffer back into the pool. Returns 0, or -1 for
 * null. */
PLX_API int PLX_bufList_clearAllBufList(PLX_bufList* list)
    PLX_TYPED("_Z27PLX_bufList_clearAllBufListP11PLX_bufList");

/* ---- Text ----------------------------------------------------------------------------------- */

/* The helpers work in place or into the caller's buffer, allocate nothing and keep no state. A null
 * text, key or buffer is ignored. Letters and white space are those of ASCII, in any locale. */

/* PLX_trim removes spaces, tabs, line feeds and carriage returns at both ends of `s`, in place.
 * White space in front is removed by one copy that must not overlap: when there is less of it than
 * text behind it, `s` becomes empty. One space before "abc" gives ""; three give "abc". Callers
 * that want the text start behind the white space themselves. Exported as PLX_trim(char*). */
PLX_API void PLX_trim(char* s) PLX_TYPED("_Z8PLX_trimPc");

PLX_BEGIN_DECLS

/* PLX_RemoveSpecifiedCharacter copies the bytes of `src` that differ from `ch` to `dst`, which must
 * have room for them and may be `src` itself. No terminator is written: clear `dst` before. */
PLX_API void PLX_RemoveSpecifiedCharacter(const char* src, char* dst, char ch);

/* PLX_getStrValue copies the value behind the first occurrence of `key` in `text` to `out`, which
 * holds `outSize` bytes: key="value", key "value", key"value" or key=value, the last only when a
 * comma follows it. An occurrence inside a longer word counts.
 * `out[0]` is cleared first. When a value is found, as many of its bytes as fit are copied and
 * `out[outSize - 1]` is cleared; the bytes between keep their contents, so clear `out` before. An
 * `outSize` of 0 writes nothing. `out` must not overlap `text`. */
PLX_API void PLX_getStrValue(const char* text, const char* key, char* out, unsigned int outSize)
    PLX_CHECK_WRITES(3, 4, out, outSize);

/* PLX_getFirstString copies the first word of the `len` bytes at `text` to `out`, which holds
 * `outSize` bytes, cuts it to fit and terminates it. Words end at spaces, tabs, line and form
 * feeds, carriage returns and backspaces; a zero byte is part of a word. Without a word, or with a
 * `len` below 1 or an `outSize` below 2, `out` is left alone. Returns `out`, or null when `text` is
 * null. */
PLX_API char* PLX_getFirstString(const char* text, int len, char* out, int outSize)
    PLX_CHECK_READS(1, 2, text, len) PLX_CHECK_WRITES(3, 4, out, outSize);

/* removeCharacter writes `src` without the bytes that equal `ch` to `dst`, which holds `dstSize`
 * bytes. When there is none in it (or `ch` is 0), `dst` is overwritten by strncpy_s. Otherwise the
 * pieces between are appended to the text in `dst` by strncat_s: it must hold one, normally the
 * empty one. What does not fit empties `dst` as those functions do; pieces behind it are then
 * appended all the same. Returns -1 when a pointer is null or `dstSize` is 0, else 0. */
PLX_API int removeCharacter(const char* src, char* dst, unsigned int dstSize, int ch)
    PLX_CHECK_UPDATES(2, 3, dst, dstSize);

/* strstrcase returns the first place in `haystack` where `needle` stands in any mix of upper and
 * lower case, or null when there is none or an argument is null. An empty `needle` stands at the
 * start. */
PLX_API char* strstrcase(const char* haystack, const char* needle);

PLX_END_DECLS

/* ---- StringArray ---------------------------------------------------------------------------- */

#ifdef __cplusplus

/* StringArray holds heap copies of C strings, allocated with array-new. Its fields are read
 * directly. It carries no run-time type information: typeid and dynamic_cast on it, and deriving
 * from it with type information, do not link.
 *
 * Capacity: 0, then 16, doubled when full. TRAP: the growth from 16 to 32, and every one after it,
 * loses the entries held so far: their slots read null, and the copies are never freed. Programs
 * depend on its figures, so it stays so: use it for up to 16 strings, and PLX_array beyond.
 *
 * A growth or an erase moves the slots, not the strings; setEntry and erase free the one at their
 * index. */
class PLX_API StringArray {
 public:
  StringArray(); /* Allocates nothing. */
  StringArray(const StringArray&) = delete;
  StringArray& operator=(const StringArray&) = delete;

  /* Frees the strings in index order, then the slots. */
  virtual ~StringArray();

  /* push_back appends a copy of `s`. Returns 1, or 0 when `s` is null, memory is short, or the
   * capacity does not fit an int. A growth that fails leaves the capacity raised all the same. */
  int push_back(const char* s);

  /* erase frees entry `index` and moves those behind it down. Other indexes are ignored. */
  void erase(int index);

  /* sort calls qsort on the slots: `compare` receives pointers to char*. */
  void sort(int (*compare)(const void*, const void*));

  /* cmpAscendingAlpha compares the strings that two slots point to by strcmp; null slots come
   * first. */
  static int cmpAscendingAlpha(const void* a, const void* b);

  /* setEntry replaces entry `index` by a copy of `s`, which may be that entry or a part of it.
   * Other indexes and a null `s` are ignored; when memory is short the entry stays. */
  void setEntry(int index, const char* s);

  int32_t capacity; /* slots allocated */
  int32_t size;     /* strings held, in slots 0 to size - 1 */
  char** entries;   /* null until the first push_back */
};

#endif /* __cplusplus */

#endif
