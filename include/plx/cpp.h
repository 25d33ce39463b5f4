/* C++17 over the C interface: sizes by rule, requests made safe, owners and typed views.
 *
 * Header only and inline: it adds no symbol, allocates nothing of its own, throws nothing, and
 * needs neither exceptions nor type information of the host. Everything stands in namespace plx.
 *
 * Owners are std::unique_ptr with the family's release function. Views are as cheap as the pointer
 * that they hold; they own nothing and must not outlive what they look at.
 */
#ifndef PLX_CPP_H
#define PLX_CPP_H

#include <plx/cipher.h>
#include <plx/container.h>
#include <plx/digest.h>
#include <plx/json.h>
#include <plx/securec.h>

#include <climits>
#include <cstdarg>
#include <cstddef>
#include <memory>
#include <string_view>

namespace plx {

/* ---- Sizes by rule ----------------------------------------------------------------------------
 */

/* All sizes are bytes. A size that no buffer can have (a wrap on 32-bit machines) comes out as 0,
 * which every function refuses as a capacity. */

/* base64_text_size returns the capacity that PLX_b64_encode needs for `size` bytes: the text and
 * its terminator. */
constexpr size_t base64_text_size(size_t size) noexcept {
  return size > SIZE_MAX / 4 * 3 - 6 ? 0 : (size + 2) / 3 * 4 + 1;
}

/* base64_decode_size returns the capacity that PLX_b64_decode needs for a text of `length`
 * characters. It works in place and needs as many bytes as there are characters, although fewer
 * remain. */
constexpr size_t base64_decode_size(size_t length) noexcept { return length; }

/* base64_bytes_max returns how many bytes a text of `length` characters decodes to at most, in
 * either alphabet. */
constexpr size_t base64_bytes_max(size_t length) noexcept {
  return length / 4 * 3 + length % 4 * 3 / 4;
}

/* base64url_text_size returns the capacity that PLX_base64UrlEncoder needs for `size` bytes: the
 * text, which has no padding, and its terminator. */
constexpr size_t base64url_text_size(size_t size) noexcept {
  return size > SIZE_MAX / 4 * 3 - 6 ? 0 : size / 3 * 4 + (size % 3 ? size % 3 + 1 : 0) + 1;
}

/* hex_text_size returns the capacity for `size` bytes as hexadecimal text with its terminator. */
constexpr size_t hex_text_size(size_t size) noexcept {
  return size > SIZE_MAX / 2 - 1 ? 0 : 2 * size + 1;
}

/* des3_output_size returns what PLX_3des_encrypt and PLX_3des_decrypt write for `length` bytes: a
 * whole block more than a whole number of blocks. */
constexpr size_t des3_output_size(size_t length) noexcept {
  return length > SIZE_MAX - 8 ? 0 : (length / 8 + 1) * 8;
}

/* aes_record_output_size returns the capacity that PLX_AesEncryByMode and PLX_AesDecryByMode ask
 * for when the record's text has `length` characters. */
constexpr size_t aes_record_output_size(size_t length) noexcept {
  return length > SIZE_MAX - 16 ? 0 : length / 16 * 16 + 16;
}

/* aes_cbc_text_size returns the `outSize` that the PLX_aesCbcEncrypt functions need for `size`
 * bytes: the initialisation vector and the padded blocks as Base64 in lines of 64 characters, and
 * the two bytes by which they round up. */
constexpr size_t aes_cbc_text_size(size_t size) noexcept {
  if (size > 0x60000000) return 0;
  const size_t blob = 16 + (size / 16 + 1) * 16;
  const size_t text = (blob + 2) / 3 * 4 + (blob + 47) / 48;
  const size_t needed = text / 4 * 4 + 4 + 1;
  return needed > INT_MAX ? 0 : needed;
}

/* aes_cbc_plain_size returns an `outSize` that is enough for the PLX_aesCbcDecrypt functions and a
 * text of `length` characters. */
constexpr size_t aes_cbc_plain_size(size_t length) noexcept {
  return base64_bytes_max(length) < 16 ? 1 : base64_bytes_max(length) - 16 + 1;
}

/* ---- Requests ---------------------------------------------------------------------------------
 */

/* RequestStatus is what became of a request. PLX_AesEncry and PLX_AesDecry alone answer 1 also when
 * nothing was written, and 0 also when the result is empty. */
enum class RequestStatus {
  kDone,           /* text() is the result */
  kEmpty,          /* accepted, and the result has no bytes */
  kNothingWritten, /* accepted, but the cipher refused: wrong key, padding, or size */
  kRefused         /* the request is malformed, its key cannot be had, or libcrypto refuses */
};

/* RequestResult holds the result of one request, of up to `Capacity` bytes, inside itself, and
 * wipes it when it goes. Test it, or look at status(), before text(). */
template <size_t Capacity>
class RequestResult {
 public:
  RequestResult() noexcept = default;
  RequestResult(const RequestResult&) noexcept = default;
  RequestResult& operator=(const RequestResult&) noexcept = default;
  ~RequestResult() { (void)::memset_s(this, sizeof *this, 0, sizeof *this); }

  /* status tells the four outcomes apart. */
  RequestStatus status() const noexcept { return status_; }
  /* A result is true when it has bytes. */
  explicit operator bool() const noexcept { return status_ == RequestStatus::kDone; }
  /* text returns the result, which may hold zero bytes; it is terminated as well. */
  std::string_view text() const noexcept { return {buffer_ + 1, *this ? size_ : 0}; }
  const char* c_str() const noexcept { return *this ? buffer_ + 1 : ""; }

 private:
  friend RequestResult<2048> encrypt_request(const char*) noexcept;
  friend RequestResult<1024> decrypt_request(const char*) noexcept;

  static constexpr char kGuard = 'G';
  static constexpr char kUntouched = '\xfe';

  char* open() noexcept {
    (void)::memset_s(buffer_, sizeof buffer_, kUntouched, sizeof buffer_);
    buffer_[0] = kGuard;
    return buffer_ + 1;
  }

  void close(RequestStatus status, size_t size) noexcept {
    status_ = status;
    size_ = size;
    buffer_[1 + size] = 0;
  }

  /* An accepted request that cannot get its room stores a zero before it; a refused one does not.
   */
  static RequestStatus without_bytes(const char* request) noexcept {
    char probe[2] = {kGuard, kUntouched};
    const bool accepted = ::PLX_AesDecry(request, probe + 1, 0) == 1;
    return accepted && cipher_works() ? RequestStatus::kEmpty : RequestStatus::kRefused;
  }

  /* Whether libcrypto has the cipher at all: padding alone makes a block. */
  static bool cipher_works() noexcept {
    char block[32] = {kUntouched};
    return ::PLX_AesEncry(
               "{\"cipherSize\":128,\"paddingMode\":\"PKCS5Padding\","
               "\"cipherPrefix\":\"............\",\"plainText\":\"\"}",
               block) == 1 &&
           block[0] != kUntouched;
  }

  RequestStatus status_ = RequestStatus::kRefused;
  size_t size_ = 0;
  char buffer_[1 + Capacity + 1] = {}; /* a guard byte, the result, a terminator */
};

/* CipherText and PlainText hold the longest result that a request can have: the library takes no
 * more than 1022 characters of text from one. */
using CipherText = RequestResult<2048>;
using PlainText = RequestResult<1024>;

/* encrypt_request runs PLX_AesEncry on `request` and returns the upper-case hexadecimal digits. */
inline CipherText encrypt_request(const char* request) noexcept {
  CipherText result;
  char* const out = result.open();
  const int answer = ::PLX_AesEncry(request, out);
  size_t size = 0;
  while (size < 2048 && out[size] != CipherText::kUntouched) ++size;
  result.close(size > 0      ? RequestStatus::kDone
               : answer == 1 ? RequestStatus::kNothingWritten
                             : CipherText::without_bytes(request),
               size);
  return result;
}

/* decrypt_request runs PLX_AesDecry on `request` and returns the plain text. A request that the
 * cipher refuses stores a zero into the byte before its output; here that byte is a guard, and
 * tells. */
inline PlainText decrypt_request(const char* request) noexcept {
  PlainText result;
  char* const out = result.open();
  const int answer = ::PLX_AesDecry(request, out, 1024);
  if (answer != 1) {
    result.close(PlainText::without_bytes(request), 0);
  } else if (out[-1] != PlainText::kGuard) {
    result.close(RequestStatus::kNothingWritten, 0);
  } else {
    /* The terminator is the last zero: behind it stand padding or untouched bytes, none of them 0.
     */
    size_t size = 1023;
    while (size > 0 && out[size] != 0) --size;
    result.close(RequestStatus::kDone, size);
  }
  return result;
}

/* ---- Owners -----------------------------------------------------------------------------------
 */

/* ReleaseBy is the deleter that calls a function of the library. */
template <auto kRelease>
struct ReleaseBy {
  template <class T>
  void operator()(T* object) const noexcept {
    kRelease(object);
  }
};

/* Block owns what PLX_malloc, PLX_strdup and their kin return. */
template <class T>
using Block = std::unique_ptr<T, ReleaseBy<&::PLX_free>>;

/* The owners of a JSON tree, an array (with its elements), a hash table (with its values) and a
 * buffer list. */
using JsonTree = std::unique_ptr<::PLX_JsonValue, ReleaseBy<&::PLX_FreeJsonValue>>;
using ArrayOwner = std::unique_ptr<::PLX_array, ReleaseBy<&::PLX_array_destroy>>;
using HashTableOwner = std::unique_ptr<::PLX_hashtable, ReleaseBy<&::PLX_hashtable_destroy>>;
using BufferListOwner = std::unique_ptr<::PLX_bufList, ReleaseBy<&::PLX_bufList_realse>>;

/* parse_json parses `text` into a tree of its own, or null. */
inline JsonTree parse_json(const char* text) noexcept {
  return JsonTree(::PLX_ParseJsonString(text));
}

/* find_text returns the text of the first member named `name` anywhere below `value`, and
 * `otherwise` where there is none or it is no scalar. */
inline std::string_view find_text(const ::PLX_JsonValue* value, const char* name,
                                  std::string_view otherwise = {}) noexcept {
  const char* text = ::PLX_FindStringFromJsonValue(value, name);
  return text != nullptr ? std::string_view(text) : otherwise;
}

/* ---- Typed views ------------------------------------------------------------------------------
 */

/* ArrayView sees a PLX_array as one of pointers to T. */
template <class T>
class ArrayView {
 public:
  explicit ArrayView(::PLX_array* array) noexcept : array_(array) {}

  /* iterator walks the elements in order; a change of the array ends its use. */
  class iterator {
   public:
    explicit iterator(void** slot) noexcept : slot_(slot) {}
    T* operator*() const noexcept { return static_cast<T*>(*slot_); }
    iterator& operator++() noexcept { return ++slot_, *this; }
    bool operator!=(iterator other) const noexcept { return slot_ != other.slot_; }
    bool operator==(iterator other) const noexcept { return slot_ == other.slot_; }

   private:
    void** slot_;
  };

  /* size returns the number of elements; 0 for a null array. */
  int size() const noexcept { return array_ != nullptr ? array_->count : 0; }
  /* The element at `index`, or null where there is none. */
  T* operator[](int index) const noexcept {
    return static_cast<T*>(::PLX_array_getIndex(array_, index));
  }
  iterator begin() const noexcept { return iterator(usable() ? array_->items : nullptr); }
  iterator end() const noexcept {
    return iterator(usable() ? array_->items + array_->count : nullptr);
  }

  /* append hands `element` to the array and tells whether it took it; if not, it stays yours. */
  PLX_CHECK_RESULT bool append(T* element) const noexcept {
    return ::PLX_array_append(array_, element) == 0;
  }

 private:
  /* After a failed growth there is a count without slots. */
  bool usable() const noexcept { return array_ != nullptr && array_->items != nullptr; }

  ::PLX_array* array_;
};

/* TableView sees a PLX_hashtable as one from const Key* to Value*. */
template <class Key, class Value>
class TableView {
 public:
  explicit TableView(::PLX_hashtable* table) noexcept : table_(table) {}

  /* size returns the number of entries; 0 for a null table. */
  unsigned int size() const noexcept { return ::PLX_hashtable_getNodeCount(table_); }
  /* find returns the value that stands under `key`, or null. */
  Value* find(const Key* key) const noexcept {
    return static_cast<Value*>(::PLX_hashtable_find(table_, key));
  }
  /* insert puts `value` under `key`, which stays yours and has to live as long as the entry. */
  PLX_CHECK_RESULT bool insert(const Key* key, Value* value) const noexcept {
    return ::PLX_hashtable_insert(table_, key, value) == 0;
  }

 private:
  ::PLX_hashtable* table_;
};

/* ---- Bounds-checked functions on arrays -------------------------------------------------------
 */

/* The functions below are those of securec.h with the destination's size taken from its type. A
 * pointer does not compile, so that no size is ever that of the pointer. */
template <size_t N>
errno_t strcpy_s(char (&dest)[N], const char* src) noexcept {
  return ::strcpy_s(dest, N, src);
}
template <size_t N>
errno_t strcat_s(char (&dest)[N], const char* src) noexcept {
  return ::strcat_s(dest, N, src);
}
template <size_t N>
errno_t strncpy_s(char (&dest)[N], const char* src, size_t count) noexcept {
  return ::strncpy_s(dest, N, src, count);
}
template <size_t N>
errno_t strncat_s(char (&dest)[N], const char* src, size_t count) noexcept {
  return ::strncat_s(dest, N, src, count);
}
template <size_t N>
errno_t wcscpy_s(wchar_t (&dest)[N], const wchar_t* src) noexcept {
  return ::wcscpy_s(dest, N, src);
}
template <size_t N>
errno_t wcscat_s(wchar_t (&dest)[N], const wchar_t* src) noexcept {
  return ::wcscat_s(dest, N, src);
}
template <size_t N>
errno_t wcsncpy_s(wchar_t (&dest)[N], const wchar_t* src, size_t count) noexcept {
  return ::wcsncpy_s(dest, N, src, count);
}
template <size_t N>
errno_t wcsncat_s(wchar_t (&dest)[N], const wchar_t* src, size_t count) noexcept {
  return ::wcsncat_s(dest, N, src, count);
}

/* The memory functions take arrays of any plain type; sizes and counts are bytes. */
template <class T, size_t N>
errno_t memset_s(T (&dest)[N], int c) noexcept {
  return ::memset_s(dest, sizeof dest, c, sizeof dest);
}
template <class T, size_t N>
errno_t memcpy_s(T (&dest)[N], const void* src, size_t count) noexcept {
  return ::memcpy_s(dest, sizeof dest, src, count);
}
template <class T, size_t N>
errno_t memmove_s(T (&dest)[N], const void* src, size_t count) noexcept {
  return ::memmove_s(dest, sizeof dest, src, count);
}

/* sprintf_s and swprintf_s format into an array, snprintf_s at most `count` characters. */
template <size_t N>
PLX_CHECK_FORMAT(2, 3)
int sprintf_s(char (&dest)[N], const char* format, ...) noexcept {
  va_list args;
  va_start(args, format);
  const int written = ::vsprintf_s(dest, N, format, args);
  va_end(args);
  return written;
}
template <size_t N>
PLX_CHECK_FORMAT(3, 4)
int snprintf_s(char (&dest)[N], size_t count, const char* format, ...) noexcept {
  va_list args;
  va_start(args, format);
  const int written = ::vsnprintf_s(dest, N, count, format, args);
  va_end(args);
  return written;
}
template <size_t N>
int swprintf_s(wchar_t (&dest)[N], const wchar_t* format, ...) noexcept {
  va_list args;
  va_start(args, format);
  const int written = ::vswprintf_s(dest, N, format, args);
  va_end(args);
  return written;
}

}  // namespace plx

#endif
