#include "platform/os/linux/errno_codes.h"

#include <cerrno>

namespace qmp::os {

ErrorCode code_of_errno(int number, ErrorCode input_output) {
    switch (number) {
        case 0:
            return no_error;
        case ENOENT:
            return file_not_found;
        case ENOTDIR:
            return path_not_found;
        case EMFILE:
        case ENFILE:
            return too_many_open_files;
        case EACCES:
        case EPERM:
        case EROFS:
        case EISDIR:
            return access_denied;
        case EBADF:
            return invalid_handle;
        case ENOMEM:
            return not_enough_memory;
        case EXDEV:
            return not_same_device;
        case EIO:
            return input_output;
        case EBUSY:
        case ETXTBSY:
        case EWOULDBLOCK:
            return sharing_violation;
        case EEXIST:
            return file_exists;
        case EINVAL:
            return invalid_parameter;
        case ENOSPC:
        case EDQUOT:
            return disk_full;
        case ENOTEMPTY:
            return directory_not_empty;
        case ENAMETOOLONG:
            return name_too_long;
        case EFBIG:
            return file_too_large;
        case ENODEV:
        case ENXIO:
            return device_not_connected;
        default:
            return foreign_error | static_cast<ErrorCode>(number);
    }
}

}  // namespace qmp::os
