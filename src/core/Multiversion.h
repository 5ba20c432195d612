#pragma once

/// Compiles a hot loop for several instruction sets; the loader picks one when the program starts.
/// The attribute goes before a plain function whose loops the compiler can vectorise. Sanitized and clang
/// builds have one version: their runtimes are not ready yet when the loader asks.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) && !defined(__SANITIZE_ADDRESS__) && \
    !defined(__SANITIZE_THREAD__)
#define TESSARA_MULTIVERSION __attribute__((target_clones("arch=x86-64-v4", "arch=x86-64-v3", "default")))
#else
#define TESSARA_MULTIVERSION
#endif

/// For the pieces of such a loop that are functions of their own: one that is not inlined is compiled for the
/// oldest instruction set only.
#if defined(__GNUC__)
#define TESSARA_ALWAYS_INLINE inline __attribute__((always_inline))
#else
#define TESSARA_ALWAYS_INLINE inline
#endif
