#include "numbers/basic_int.h"

#include "errors/check.h"
#include "errors/exception.h"
#include "errors/fatal.h"
#include "multiply/basecase/word_kernels.h"
#include "numbers/basecase_product.h"
#include "numbers/check_value.h"

namespace qmp {

BasicInt& BasicInt::operator+=(BasicIntView view) {
    constexpr const char* function = "BasicInt::operator+=()";
    require_capacity(function, AL, L + 1);
    if (view.L > L) invalid_function_parameters(function);

    T[L] = 0;
    const bool carry = add_words(T, T, view.T, view.L);
    add_carry(T + view.L, L + 1 - view.L, carry);
    if (T[L] != 0) ++L;
    hash = check_add(hash, view.hash);
    return *this;
}

BasicInt& BasicInt::operator-=(BasicIntView view) {
    constexpr const char* function = "BasicInt::operator-=()";
    require_capacity(function, AL, L + 1);
    if (L < view.L) throw UnsupportedNegativeException(function, "A negative value was encountered.");

    // The sentinel above the top word is consumed exactly when the difference is negative.
    T[L] = 1;
    const bool borrow = sub_words(T, T, view.T, view.L);
    sub_borrow(T + view.L, L + 1 - view.L, borrow);
    if (T[L] == 0) throw UnsupportedNegativeException(function, "A negative value was encountered.");

    while (L > 0 && T[L - 1] == 0) --L;
    if (L == 0) throw UnsupportedZeroException(function, "Zero was encountered.");
    hash = check_sub(hash, view.hash);
    return *this;
}

void BasicInt::set_mulB(BasicIntView a, BasicIntView b) {
    require_capacity("BasicIntR::set_mulB()", AL, a.L + b.L);
    hash = check_mul(a.hash, b.hash);
    if (a.L == 0 || b.L == 0) {
        L = 0;
        return;
    }
    basecase_product(T, a.T, a.L, b.T, b.L);
    L = a.L + b.L;
    if (T[L - 1] == 0) --L;
}

}  // namespace qmp
