#include "sessions/ram_settings.h"

#include "errors/exception.h"
#include "errors/file_exception.h"
#include "sessions/ram_session.h"

namespace kelvara {

std::string RamSettings::obstacle() const {
    try {
        check();
        return make_computation() ? "" : "The constant has no such algorithm.";
    } catch (const qmp::FileIO::FileException& exception) {
        return exception.message();
    } catch (const qmp::InvalidParametersException& exception) {
        return exception.message();
    }
}

void RamSettings::run() const {
    RamSession(*this).run();
}

}  // namespace kelvara
