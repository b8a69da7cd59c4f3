// The real constants of the series cost models.
//
// Kept as decimal texts of forty digits and parsed once; every plan follows from these doubles, so they
// are part of what makes plans alike everywhere.
#pragma once

namespace qmp {

struct SeriesConstants {
    double log10_e;  // decimal digits per unit of the natural logarithm
    double log10_2;
    double digits_per_word;  // decimal digits
    double ln_2;
    double ln_32;
    double ln_4;
    double ln_ln_word;  // ln(ln 2^64)
    double ln_word;     // ln 2^64
    double words_per_digit;
    double words_per_unit;  // words per unit of the natural logarithm
};

const SeriesConstants& series_constants();

// A decimal text as a double.
double parse_literal(const char* text);

}  // namespace qmp
