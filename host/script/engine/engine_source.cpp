// The engine's source, as its package ships it but for the changes that CMakeLists.txt makes.
#define DUK_COMPILING_DUKTAPE
#include "host/script/engine/kalvo_duktape.h"

#include <kalvo_duktape_source.c>

extern "C" void kalvo_engine_ask_now(duk_context* context) {
  context->interrupt_init = 0;
  context->interrupt_counter = 0;
}

extern "C" void kalvo_engine_adopt(duk_context* context, void* udata, duk_uint64_t seed) {
  context->heap->heap_udata = udata;
  context->heap->rnd_state[0] = seed;
  duk_util_tinyrandom_prepare_seed(context);
}
