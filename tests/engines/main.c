/* usage: engines [THREADS]
 *
 * Runs every engine, and with THREADS runs all of them once more in so many threads at once, which
 * share nothing but the library. Each has to come to the same as alone. */
#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>

#include "engines.h"

enum { kMostEngines = 64, kMostThreads = 64 };

static const engine *engines[kMostEngines];
static uint64_t alone[kMostEngines];
static int engine_count;

static void list(const engine *family) {
  for (; family->name != NULL; ++family) {
    if (engine_count == kMostEngines) abort();
    engines[engine_count++] = family;
  }
}

/* A thread begins with the engine of its number: at any time they run several, and sooner or later
 * several run the same. Returns the name of an engine that came to something else, or null. */
static void *run_all(void *argument) {
  const int first = *(const int *)argument;
  const char *wrong = NULL;
  for (int i = 0; i < 2 * engine_count; ++i) {
    const int number = (first + i / 2) % engine_count; /* each twice */
    if (engines[number]->run() != alone[number]) wrong = engines[number]->name;
  }
  return (void *)wrong;
}

int main(int argc, char **argv) {
  const int thread_count = argc > 1 ? atoi(argv[1]) : 0;
  if (argc > 2 || thread_count < 0 || thread_count > kMostThreads) {
    fprintf(stderr, "usage: engines [THREADS, at most %d]\n", kMostThreads);
    return 2;
  }
  list(processors);
  list(transforms);
  list(filter_banks);
  list(kernels);
  for (int i = 0; i < engine_count; ++i) {
    alone[i] = engines[i]->run();
    printf("%016llx  %s\n", (unsigned long long)alone[i], engines[i]->name);
  }

  pthread_t threads[kMostThreads];
  int first[kMostThreads];
  for (int i = 0; i < thread_count; ++i) {
    first[i] = i;
    if (pthread_create(&threads[i], NULL, run_all, &first[i]) != 0) {
      fprintf(stderr, "engines: can't make %d threads\n", thread_count);
      return 1;
    }
  }
  int failures = 0;
  for (int i = 0; i < thread_count; ++i) {
    void *wrong = NULL;
    pthread_join(threads[i], &wrong);
    if (wrong == NULL) continue;
    fprintf(stderr, "engines: %s isn't the same among threads\n", (const char *)wrong);
    ++failures;
  }
  return failures != 0;
}
