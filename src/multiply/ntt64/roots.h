// The roots of unity and other constants of one prime and one direction, formed in scratch for each
// transform: tables as long as a row or a column of the matrix, so their cost vanishes beside the points.
#pragma once

#include <cstdint>

#include "multiply/ntt64/kernels/kernels.h"
#include "multiply/ntt64/prime_table.h"

namespace qmp::ntt64 {

enum class Direction { forward, inverse };

// Memory that form_roots() fills.
std::uint64_t root_words(const Matrix& matrix);

// `memory` holds root_words(matrix) words, which the result points into. The prime is 1 modulo the number
// of points, twice that for a negacyclic transform.
Roots form_roots(const Matrix& matrix, const Prime& prime, Direction direction, std::uint64_t* memory);

}  // namespace qmp::ntt64
