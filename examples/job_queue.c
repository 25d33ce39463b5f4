/* A job queue over the buffer list: a producer formats jobs into pooled buffers, a consumer takes
 * them in order. Nothing is allocated between the first line of main and the last. */
#include <plx/container.h>
#include <plx/securec.h>
#include <stdio.h>

enum { kJobs = 2, kJobSize = 32 };

/* Queues one job; when the pool is empty the caller has to work off some jobs first. */
static int add_job(PLX_bufList* queue, const char* text) {
  void* buf;
  if (PLX_bufList_getUseableBuf(queue, &buf) != 0) return 0;
  if (strcpy_s(buf, kJobSize, text) != EOK) return 0;
  return PLX_bufList_push_back(queue, buf, kJobSize) == 0;
}

static int work_off(PLX_bufList* queue) {
  int done = 0, len;
  void* buf;
  /* The buffer is back in the pool, but stays as it is until the next getUseableBuf. */
  for (; PLX_bufList_pop_front(queue, &buf, &len) == 0; ++done) {
    printf("did: %s\n", (const char*)buf);
  }
  return done;
}

int main(void) {
  static const char* const jobs[] = {"tune 11", "scan", "record 4 90"};
  int done = 0;
  size_t i;
  PLX_bufList* queue = PLX_bufList_init(kJobs, kJobSize);
  if (queue == NULL) return 1;
  for (i = 0; i < sizeof jobs / sizeof *jobs; ++i) {
    if (!add_job(queue, jobs[i])) {
      done += work_off(queue);
      if (!add_job(queue, jobs[i])) return 1;
    }
  }
  done += work_off(queue);
  printf("%d jobs, %d waiting\n", done, (int)queue->usedCount);
  PLX_bufList_realse(queue);
  return 0;
}
