#pragma once

// The script engine as this program builds it: include this and never <duktape.h>. Its C++ exceptions run the
// destructors of our frames, and its running code asks now and then whether the page may go on.

#include <stdexcept>
// Errors name places of script alone, none of the program's own source.
#define DUK_FILE_MACRO nullptr
// The engine's own configuration first: it is guarded, so that what is changed below stays changed.
#include <duk_config.h>

#undef DUK_USE_CPP_EXCEPTIONS
#define DUK_USE_CPP_EXCEPTIONS
#undef DUK_USE_INTERRUPT_COUNTER
#define DUK_USE_INTERRUPT_COUNTER
#undef DUK_USE_EXEC_TIMEOUT_CHECK
#define DUK_USE_EXEC_TIMEOUT_CHECK(heap) kalvo_engine_must_stop(heap)
// Texts are hashed whole: by a few of their characters, long texts that differ in little would be one chain.
#undef DUK_USE_STRHASH_DENSE
#define DUK_USE_STRHASH_DENSE
// Script that calls the library that calls script nests on the thread's stack, and so do the compiler and the
// regular expressions: the limits keep the deepest nesting within a few MiB.
#undef DUK_USE_NATIVE_CALL_RECLIMIT
#define DUK_USE_NATIVE_CALL_RECLIMIT 200
#undef DUK_USE_COMPILER_RECLIMIT
#define DUK_USE_COMPILER_RECLIMIT 1000
#undef DUK_USE_REGEXP_COMPILER_RECLIMIT
#define DUK_USE_REGEXP_COMPILER_RECLIMIT 1000
#undef DUK_USE_REGEXP_EXECUTOR_RECLIMIT
#define DUK_USE_REGEXP_EXECUTOR_RECLIMIT 5000
#undef DUK_USE_FATAL_HANDLER

extern "C" {
// Answers 1 when the page must stop; the engine then raises an error at every step until all code is left.
int kalvo_engine_must_stop(void* heap);
// Told of a step inside of a long built-in. Ends it with an error when the page must stop.
void kalvo_engine_step(struct duk_hthread* context);
// Asked for a property that an object of this prototype has not got, whose name is on the top of the stack. Answers 1
// with the published spelling in the name's place; 0 where it is no object of the program's. A name that a page writes
// to and that there is in no spelling is refused with an error.
int kalvo_engine_other_name(struct duk_hthread* context, void* prototype, int written);
// Told when a piece of memory was refused for good.
void kalvo_engine_out_of_memory(void* heap);
}

#include <duktape.h>

extern "C" {
// Makes the running code ask at its next step.
void kalvo_engine_ask_now(duk_context* context);
// A copy of a state gets an owner, and random numbers of its own.
void kalvo_engine_adopt(duk_context* context, void* udata, duk_uint64_t seed);
}
