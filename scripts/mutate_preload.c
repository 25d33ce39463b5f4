/* Loaded in front of a test program by scripts/mutate: changes code of ours in memory before
 * anything runs. $PLX_MUTATE_DIR holds a file for each image (program or library) that is to be
 * changed, with lines "INDEX ADDRESS HEX". An INDEX of -1 stores the bytes. Any other one sets a
 * breakpoint that notes in the file $PLX_MUTATE_HITS, at that index, that the instruction was
 * reached, once. */
#define _GNU_SOURCE
#include <fcntl.h>
#include <link.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <ucontext.h>
#include <unistd.h>

enum { kMaxBreakpoints = 1 << 16 };

static struct {
  unsigned char* at; /* ascending */
  long index;
  unsigned char replaced;
} breakpoints[kMaxBreakpoints];
static size_t num_breakpoints;
static unsigned char* hits;

static void note_hit(int signal, siginfo_t* info, void* context) {
  greg_t* const registers = ((ucontext_t*)context)->uc_mcontext.gregs;
  unsigned char* const at = (unsigned char*)registers[REG_RIP] - 1;
  size_t low = 0, high = num_breakpoints;
  (void)signal, (void)info;
  while (high - low > 1) {
    const size_t middle = (low + high) / 2;
    if (breakpoints[middle].at <= at)
      low = middle;
    else
      high = middle;
  }
  if (num_breakpoints == 0 || breakpoints[low].at != at) abort();
  hits[breakpoints[low].index] = 1;
  *at = breakpoints[low].replaced;
  registers[REG_RIP] = (greg_t)at;
}

static void make_writable(unsigned char* at, size_t size) {
  const size_t page = (size_t)sysconf(_SC_PAGESIZE);
  unsigned char* const start = (unsigned char*)((size_t)at / page * page);
  if (mprotect(start, (size_t)(at + size - start), PROT_READ | PROT_WRITE | PROT_EXEC) != 0)
    abort();
}

static void change(unsigned char* at, long index, const char* hex) {
  const size_t size = strlen(hex) / 2;
  make_writable(at, size);
  if (index >= 0) {
    if (num_breakpoints == kMaxBreakpoints) abort();
    breakpoints[num_breakpoints].at = at;
    breakpoints[num_breakpoints].index = index;
    breakpoints[num_breakpoints++].replaced = *at;
  }
  for (size_t i = 0; i < size; ++i) sscanf(hex + 2 * i, "%2hhx", at + i);
}

static int change_image(struct dl_phdr_info* info, size_t size, void* unused) {
  char path[8192], name[4096];
  const ssize_t length = readlink("/proc/self/exe", name, sizeof name - 1);
  (void)size, (void)unused;
  if (length < 0) abort();
  name[length] = 0;
  const char* const image = info->dlpi_name[0] != 0 ? info->dlpi_name : name;
  const char* const slash = strrchr(image, '/');
  snprintf(path, sizeof path, "%s/%s", getenv("PLX_MUTATE_DIR"), slash ? slash + 1 : image);
  FILE* const file = fopen(path, "r");
  if (file == NULL) return 0;
  long index;
  unsigned long address;
  char hex[64];
  while (fscanf(file, "%ld %lx %63s", &index, &address, hex) == 3) {
    change((unsigned char*)info->dlpi_addr + address, index, hex);
  }
  fclose(file);
  return 0;
}

static int by_address(const void* a, const void* b) {
  return *(unsigned char* const*)a < *(unsigned char* const*)b ? -1 : 1;
}

__attribute__((constructor)) static void change_all(void) {
  if (getenv("PLX_MUTATE_DIR") == NULL) return;
  const char* const hits_path = getenv("PLX_MUTATE_HITS");
  if (hits_path != NULL) {
    const int file = open(hits_path, O_RDWR);
    struct stat info;
    if (file < 0 || fstat(file, &info) != 0) abort();
    hits = mmap(NULL, (size_t)info.st_size, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    close(file);
    if (hits == MAP_FAILED) abort();
    struct sigaction action = {0};
    action.sa_sigaction = note_hit;
    action.sa_flags = SA_SIGINFO;
    sigaction(SIGTRAP, &action, NULL);
  }
  dl_iterate_phdr(change_image, NULL);
  qsort(breakpoints, num_breakpoints, sizeof *breakpoints, by_address);
}
