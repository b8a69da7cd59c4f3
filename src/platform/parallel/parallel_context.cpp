#include "platform/parallel/parallel_context.h"

#include "platform/parallel/serial_parallelizer.h"

namespace qmp {

ParallelContext ParallelContext::sequential() {
    static SerialParallelizer serial;  // without state: any number of threads may use it
    return {1, &serial};
}

}  // namespace qmp
