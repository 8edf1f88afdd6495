#include "support/float_environment.h"

#include <xmmintrin.h>

namespace quorvex {

void SaveFloats(FloatEnvironment* to) {
  static_assert(sizeof to->x87 == 28, "as fnstenv writes it");
  asm volatile("fnstenv %0" : "=m"(to->x87));
  to->sse = _mm_getcsr();
}

void RestoreFloats(const FloatEnvironment& from) {
  asm volatile("fldenv %0" : : "m"(from.x87));
  _mm_setcsr(from.sse);
}

void SetOwnFloats() {
  constexpr uint32_t kMaskedToNearest = 0x1F80;
  asm volatile("fninit");
  _mm_setcsr(kMaskedToNearest);
}

}  // namespace quorvex
