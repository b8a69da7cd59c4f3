#include "multiply/ntt64/transform.h"

#include <algorithm>

#include "errors/exception.h"
#include "multiply/ntt64/levels.h"
#include "multiply/ntt64/roots.h"

namespace qmp::ntt64 {
namespace {

constexpr std::uint32_t shortest_log = fewest_exponent / 2;  // of the power of two in rows and in columns
constexpr std::uint64_t most_buffers = 256;
constexpr std::uint64_t points_per_task = 8192;  // below that a task costs more than it saves

// Rows and columns of about the same length.
Matrix matrix_of(const SizeParams& size, bool negacyclic) {
    const std::uint32_t log_multiplier = size.multiplier == 1 ? 0 : size.multiplier == 3 ? 1 : 2;
    const std::uint32_t most = size.exponent - shortest_log;
    const std::uint32_t log_rows = std::clamp((size.exponent + log_multiplier) / 2, shortest_log, most);
    const std::uint32_t log_columns = size.exponent - log_rows;
    return {std::uint64_t{1} << log_rows,
            std::uint64_t{size.multiplier} << log_columns,
            log_rows,
            log_columns,
            size.multiplier,
            negacyclic ? 1u : 0u};
}

// Blocks of eight rows or columns, cut into tasks. `work(task, begin, end)`.
template <typename Work>
void for_blocks(ParallelContext parallel, const Plan& plan, std::uint64_t count, std::uint64_t most_tasks,
                Work work) {
    const std::uint64_t points_per_block = plan.points / count;
    const std::uint64_t tasks = std::min(parallel.tds, most_tasks);
    const std::uint64_t smallest = (points_per_task + points_per_block - 1) / points_per_block;
    const BlockCut cut = BlockCut::of(count, tasks, smallest);
    if (cut.count == 1) {
        work(0, 0, count);
        return;
    }
    parallel.run(0, cut.count,
                 [&](std::uint64_t task) { work(task, cut.begin(task), cut.end(task, count)); });
}

}  // namespace

Plan::Plan(const SizeParams& params, bool negacyclic)
    : size(params),
      matrix(matrix_of(params, negacyclic)),
      points(params.points()),
      point_bytes(4 * (params.primes - 1)),
      primes(&prime_set(params.primes, params.multiplier)),
      table_words((root_words(matrix) + 7) / 8 * 8),
      buffer_words(lanes * matrix.rows),
      buffers(std::min(matrix.columns / lanes, most_buffers)) {
    const std::uint32_t needed = params.exponent + (negacyclic ? 1 : 0);
    if (needed > primes->exponent) {
        throw LimitExceededException("Plan::Plan()", primes->exponent, needed);
    }
}

void forward_transform(ParallelContext parallel, const Plan& plan, std::uint64_t* data, const void* operand,
                       std::uint64_t bytes, std::uint64_t* scratch) {
    const Kernels& kernels = current_kernels();
    const Matrix& matrix = plan.matrix;
    const Source source{static_cast<const unsigned char*>(operand), bytes, plan.point_bytes};
    std::uint64_t* buffers = scratch + plan.table_words;
    for (std::uint32_t i = 0; i < plan.size.primes; ++i, data += plan.points) {
        const Roots roots = form_roots(matrix, plan.primes->primes[i], Direction::forward, scratch);
        for_blocks(parallel, plan, matrix.columns / lanes, plan.buffers,
                   [&](std::uint64_t task, std::uint64_t begin, std::uint64_t end) {
                       kernels.forward_columns(matrix, roots, source, data,
                                               buffers + task * plan.buffer_words, begin, end);
                   });
        for_blocks(parallel, plan, matrix.rows / lanes, parallel.tds,
                   [&](std::uint64_t, std::uint64_t begin, std::uint64_t end) {
                       kernels.forward_rows(matrix, roots, data, begin, end);
                   });
    }
}

void inverse_transform(ParallelContext parallel, const Plan& plan, std::uint64_t* a, const std::uint64_t* b,
                       std::uint64_t* scratch) {
    const Kernels& kernels = current_kernels();
    const Matrix& matrix = plan.matrix;
    std::uint64_t* buffers = scratch + plan.table_words;
    for (std::uint32_t i = 0; i < plan.size.primes; ++i, a += plan.points, b += plan.points) {
        const Roots roots = form_roots(matrix, plan.primes->primes[i], Direction::inverse, scratch);
        for_blocks(parallel, plan, matrix.rows / lanes, parallel.tds,
                   [&](std::uint64_t, std::uint64_t begin, std::uint64_t end) {
                       kernels.inverse_rows(matrix, roots, a, b, begin, end);
                   });
        for_blocks(parallel, plan, matrix.columns / lanes, plan.buffers,
                   [&](std::uint64_t task, std::uint64_t begin, std::uint64_t end) {
                       kernels.inverse_columns(matrix, roots, a, buffers + task * plan.buffer_words, begin,
                                               end);
                   });
    }
}

}  // namespace qmp::ntt64
