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

// `count` equal parts of all primes' points, cut into tasks. `work(task, begin, end)`.
template <typename Work>
void for_parts(ParallelContext parallel, const Plan& plan, std::uint64_t count, std::uint64_t most_tasks,
               Work work) {
    const std::uint64_t points_per_part = std::max<std::uint64_t>(1, plan.size.primes * plan.points / count);
    const std::uint64_t smallest = (points_per_task + points_per_part - 1) / points_per_part;
    const BlockCut cut = BlockCut::of(count, std::min(parallel.tds, most_tasks), smallest);
    if (cut.count == 1) {
        work(0, 0, count);
        return;
    }
    parallel.run(0, cut.count,
                 [&](std::uint64_t task) { work(task, cut.begin(task), cut.end(task, count)); });
}

// The blocks of eight rows or columns of all primes. `work(task, prime, begin, end)`.
template <typename Work>
void for_blocks(ParallelContext parallel, const Plan& plan, std::uint64_t blocks, std::uint64_t most_tasks,
                Work work) {
    for_parts(parallel, plan, plan.size.primes * blocks, most_tasks,
              [&](std::uint64_t task, std::uint64_t begin, std::uint64_t end) {
                  while (begin < end) {
                      const std::uint64_t prime = begin / blocks, from = begin % blocks;
                      const std::uint64_t to = std::min(blocks, from + (end - begin));
                      work(task, prime, from, to);
                      begin += to - from;
                  }
              });
}

using AllRoots = Roots[most_primes];

void form_all_roots(const Plan& plan, Direction direction, std::uint64_t* tables, AllRoots& roots) {
    const std::uint64_t words = plan.table_words / plan.size.primes;
    for (std::uint32_t i = 0; i < plan.size.primes; ++i) {
        roots[i] = form_roots(plan.matrix, plan.primes->primes[i], direction, tables + i * words);
    }
}

}  // namespace

Plan::Plan(const SizeParams& params, bool negacyclic)
    : size(params),
      matrix(matrix_of(params, negacyclic)),
      points(params.points()),
      point_bytes(4 * (params.primes - 1)),
      primes(&prime_set(params.primes, params.multiplier)),
      table_words(params.primes * ((root_words(matrix) + 7) / 8 * 8)),
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
    AllRoots roots;
    form_all_roots(plan, Direction::forward, scratch, roots);

    // All primes of one block of columns, while the operand's part is in cache.
    for_parts(parallel, plan, matrix.columns / lanes, plan.buffers,
              [&](std::uint64_t task, std::uint64_t begin, std::uint64_t end) {
                  std::uint64_t* buffer = buffers + task * plan.buffer_words;
                  for (std::uint64_t block = begin; block < end; ++block) {
                      for (std::uint32_t i = 0; i < plan.size.primes; ++i) {
                          kernels.forward_columns(matrix, roots[i], source, data + i * plan.points, buffer,
                                                  block, block + 1);
                      }
                  }
              });
    for_blocks(parallel, plan, matrix.rows / lanes, parallel.tds,
               [&](std::uint64_t, std::uint64_t prime, std::uint64_t begin, std::uint64_t end) {
                   kernels.forward_rows(matrix, roots[prime], data + prime * plan.points, begin, end);
               });
}

void inverse_transform(ParallelContext parallel, const Plan& plan, std::uint64_t* a, const std::uint64_t* b,
                       std::uint64_t* scratch) {
    const Kernels& kernels = current_kernels();
    const Matrix& matrix = plan.matrix;
    std::uint64_t* buffers = scratch + plan.table_words;
    AllRoots roots;
    form_all_roots(plan, Direction::inverse, scratch, roots);

    for_blocks(parallel, plan, matrix.rows / lanes, parallel.tds,
               [&](std::uint64_t, std::uint64_t prime, std::uint64_t begin, std::uint64_t end) {
                   const std::uint64_t offset = prime * plan.points;
                   kernels.inverse_rows(matrix, roots[prime], a + offset, b + offset, begin, end);
               });
    for_blocks(parallel, plan, matrix.columns / lanes, plan.buffers,
               [&](std::uint64_t task, std::uint64_t prime, std::uint64_t begin, std::uint64_t end) {
                   kernels.inverse_columns(matrix, roots[prime], a + prime * plan.points,
                                           buffers + task * plan.buffer_words, begin, end);
               });
}

}  // namespace qmp::ntt64
