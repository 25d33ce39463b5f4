// Sources that read a stdio stream: standard input, and a file. Both leave the stream just behind
// the last character that was taken.
#ifndef PLX_SRC_SECUREC_INPUT_STREAM_SOURCES_H
#define PLX_SRC_SECUREC_INPUT_STREAM_SOURCES_H

#include <stdio.h>
#include <wchar.h>

#include <memory>

#include "securec/input/source.h"

namespace plx::securec::input {

// Standard input, one character at a time.
template <typename Char>
class StandardInput : public Source<Char> {
 public:
  StandardInput() : Source<Char>(&read_character) {}
  ~StandardInput();

 private:
  static bool read_character(SourceBase<Char>* self);

  Char character_ = 0;
};

// A file, in chunks. Where the position cannot be told (a pipe) a chunk is one character, so that
// nothing is read that the stream would not take back. Wide characters are the bytes of a wchar_t.
template <typename Char>
class FileSource : public Source<Char> {
 public:
  explicit FileSource(FILE* file) : Source<Char>(&read_chunk), file_(file) {}
  ~FileSource();

 private:
  static constexpr size_t kChunkSize = 1024;

  static bool read_chunk(SourceBase<Char>* self);
  bool open();
  size_t read(size_t offset, size_t size);
  size_t load_first();
  void seek_behind_taken();
  void unread_the_rest();

  FILE* const file_;
  std::unique_ptr<Char[]> chunk_;
  size_t chunk_size_ = kChunkSize;
  size_t loaded_ = 0;     // bytes in the chunk; the last character of a file may be incomplete
  size_t mark_size_ = 0;  // bytes of the byte-order mark that was removed
  long start_ = -1;       // position before the scan, or -1
};

}  // namespace plx::securec::input

#endif
