#pragma once

// Names for clang's thread-safety analysis; empty for every other compiler.

#if defined(__clang__)
#  define TS_ATTRIBUTE(x) __attribute__((x))
#else
#  define TS_ATTRIBUTE(x)
#endif

#define TS_CAPABILITY(name) TS_ATTRIBUTE(capability(name))
#define TS_SCOPED_CAPABILITY TS_ATTRIBUTE(scoped_lockable)
#define TS_GUARDED_BY(mutex) TS_ATTRIBUTE(guarded_by(mutex))
#define TS_REQUIRES(...) TS_ATTRIBUTE(requires_capability(__VA_ARGS__))
#define TS_REQUIRES_SHARED(...) TS_ATTRIBUTE(requires_shared_capability(__VA_ARGS__))
#define TS_EXCLUDES(...) TS_ATTRIBUTE(locks_excluded(__VA_ARGS__))
#define TS_ACQUIRE(...) TS_ATTRIBUTE(acquire_capability(__VA_ARGS__))
#define TS_ACQUIRE_SHARED(...) TS_ATTRIBUTE(acquire_shared_capability(__VA_ARGS__))
#define TS_RELEASE(...) TS_ATTRIBUTE(release_capability(__VA_ARGS__))
#define TS_RELEASE_GENERIC(...) TS_ATTRIBUTE(release_generic_capability(__VA_ARGS__))
#define TS_TRY_ACQUIRE(...) TS_ATTRIBUTE(try_acquire_capability(__VA_ARGS__))
#define TS_NO_ANALYSIS TS_ATTRIBUTE(no_thread_safety_analysis)
