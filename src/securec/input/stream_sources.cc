#include "securec/input/stream_sources.h"

#include <limits.h>
#include <string.h>

#include <new>

#include "internal/wipe.h"
#include "securec/memory.h"

namespace plx::securec::input {
namespace {

bool read_one(char* out) {
  const int c = fgetc(stdin);
  *out = static_cast<char>(c);
  return c != EOF;
}

bool read_one(wchar_t* out) {
  const wint_t c = fgetwc(stdin);
  *out = static_cast<wchar_t>(c);
  return c != WEOF;
}

void unread_one(char c) { static_cast<void>(ungetc(static_cast<unsigned char>(c), stdin)); }
void unread_one(wchar_t c) { static_cast<void>(ungetwc(static_cast<wint_t>(c), stdin)); }

constexpr unsigned char kUtf8Mark[] = {0xEF, 0xBB, 0xBF};

bool starts_with_wide_mark(const unsigned char* bytes) {
  return (bytes[0] == 0xFF && bytes[1] == 0xFE) || (bytes[0] == 0xFE && bytes[1] == 0xFF);
}

}  // namespace

template <typename Char>
StandardInput<Char>::~StandardInput() {
  if (this->at() != this->end()) unread_one(character_);
}

template <typename Char>
bool StandardInput<Char>::read_character(SourceBase<Char>* self) {
  auto& source = static_cast<StandardInput&>(*self);
  if (!read_one(&source.character_)) return false;
  source.set_window(&source.character_, &source.character_ + 1);
  return true;
}

template <typename Char>
FileSource<Char>::~FileSource() {
  if (chunk_ == nullptr) return;
  if (start_ >= 0) {
    seek_behind_taken();
  } else {
    unread_the_rest();
  }
  wipe(chunk_.get(), kChunkSize);
}

template <typename Char>
bool FileSource<Char>::read_chunk(SourceBase<Char>* self) {
  auto& source = static_cast<FileSource&>(*self);
  const bool first = source.chunk_ == nullptr;
  if (first && !source.open()) return false;
  if (source.loaded_ % sizeof(Char) != 0) return false;  // the file ends within a character
  source.loaded_ = first ? source.load_first() : source.read(0, source.chunk_size_);
  const size_t count = source.loaded_ / sizeof(Char);
  source.set_window(source.chunk_.get(), source.chunk_.get() + count);
  return count != 0;
}

template <typename Char>
bool FileSource<Char>::open() {
  chunk_.reset(new (std::nothrow) Char[kChunkSize / sizeof(Char) + 1]);
  if (chunk_ == nullptr) return false;
  start_ = ftell(file_);
  if (start_ < 0) chunk_size_ = sizeof(Char);
  return true;
}

// Reads up to `size` bytes behind the first `offset` bytes of the chunk and returns how many bytes
// the chunk then holds.
template <typename Char>
size_t FileSource<Char>::read(size_t offset, size_t size) {
  return offset + fread(reinterpret_cast<char*>(chunk_.get()) + offset, 1, size, file_);
}

// The first chunk, without the UTF-8 mark. Of a pipe it is read byte by byte, for as long as it
// may still be the mark.
template <>
size_t FileSource<char>::load_first() {
  size_t size = read(0, chunk_size_);
  while (size < sizeof(kUtf8Mark) && size > 0 && memcmp(chunk_.get(), kUtf8Mark, size) == 0) {
    const size_t longer = read(size, 1);
    if (longer == size) return size;
    size = longer;
  }
  if (size < sizeof(kUtf8Mark) || memcmp(chunk_.get(), kUtf8Mark, sizeof(kUtf8Mark)) != 0) {
    return size;
  }
  mark_size_ = sizeof(kUtf8Mark);
  if (size == mark_size_) return read(0, chunk_size_);
  move_memory(chunk_.get(), kChunkSize, chunk_.get() + mark_size_, size - mark_size_);
  return size - mark_size_;
}

// The first chunk, without a two-byte mark of either order. The characters behind it are taken as
// they stand.
template <>
size_t FileSource<wchar_t>::load_first() {
  const size_t size = read(0, chunk_size_);
  auto* bytes = reinterpret_cast<unsigned char*>(chunk_.get());
  constexpr size_t kMarkSize = 2;
  if (size < kMarkSize || !starts_with_wide_mark(bytes)) return size;
  mark_size_ = kMarkSize;
  move_memory(bytes, kChunkSize, bytes + kMarkSize, size - kMarkSize);
  const size_t rest = size - kMarkSize;
  return rest % sizeof(wchar_t) == 0 ? rest : read(rest, 2);
}

template <typename Char>
void FileSource<Char>::seek_behind_taken() {
  const bool all_taken = this->at() == this->end() && loaded_ % sizeof(Char) == 0;
  if (all_taken && feof(file_)) return;
  if (fseek(file_, start_, SEEK_SET) != 0) start_ = 0;
  const uint64_t position =
      static_cast<uint64_t>(start_) + mark_size_ + uint64_t{this->taken()} * sizeof(Char);
  if (position > LONG_MAX) return;  // GCOVR_EXCL_BR_LINE: where a long has 32 bits
  // A file that can no longer be placed says so at the next call.
  static_cast<void>(fseek(file_, static_cast<long>(position), SEEK_SET));
}

template <typename Char>
void FileSource<Char>::unread_the_rest() {
  const auto* bytes = reinterpret_cast<const unsigned char*>(chunk_.get());
  const auto* stop = reinterpret_cast<const unsigned char*>(this->at());
  for (const unsigned char* p = bytes + loaded_; p != stop; --p) {
    static_cast<void>(ungetc(p[-1], file_));
  }
}

template class StandardInput<char>;
template class StandardInput<wchar_t>;
template class FileSource<char>;
template class FileSource<wchar_t>;

}  // namespace plx::securec::input
