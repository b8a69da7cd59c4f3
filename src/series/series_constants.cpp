#include "series/series_constants.h"

#include <cstdlib>

namespace qmp {

double parse_literal(const char* text) {
    return std::strtod(text, nullptr);
}

const SeriesConstants& series_constants() {
    static const SeriesConstants constants = {
        .log10_e = parse_literal("0.4342944819032518276511289189166050822944"),
        .log10_2 = parse_literal("0.3010299956639811952137388947244930267682"),
        .digits_per_word = parse_literal("19.26591972249479649367928926236755371316"),
        .ln_2 = parse_literal("0.6931471805599453094172321214581765680755"),
        .ln_32 = parse_literal("3.465735902799726547086160607290882840378"),
        .ln_4 = parse_literal("1.386294361119890618834464242916353136151"),
        .ln_ln_word = parse_literal("3.792370162778007529490953570516389938999"),
        .ln_word = parse_literal("44.36141955583649980270285577332330035683"),
        .words_per_digit = parse_literal("0.05190512648261503668547374108577172149789"),
        .words_per_unit = parse_literal("0.02254211001389005323999882314065456464729"),
    };
    return constants;
}

}  // namespace qmp
