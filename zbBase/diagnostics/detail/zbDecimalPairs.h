// The two-digit decimal forms of 0 to 99, for numbers formatted by hand.
#pragma once

namespace zbBase {
namespace detail {

// Digits of v (0 to 99) at kDecimalPairs + 2 * v.
constexpr char kDecimalPairs[] = "00010203040506070809"
                                 "10111213141516171819"
                                 "20212223242526272829"
                                 "30313233343536373839"
                                 "40414243444546474849"
                                 "50515253545556575859"
                                 "60616263646566676869"
                                 "70717273747576777879"
                                 "80818283848586878889"
                                 "90919293949596979899";

} // namespace detail
} // namespace zbBase
