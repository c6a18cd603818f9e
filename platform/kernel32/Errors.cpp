// The calling thread's last error code, and the system's words for codes.
#include "com/WideText.h"

#include <windows.h>

#include <algorithm>
#include <iterator>

namespace
{
thread_local DWORD lastError = ERROR_SUCCESS;

struct Message
{
    DWORD code;
    const WCHAR *text;
};

// In ascending order of the code, for a binary search.
constexpr Message Messages[] = {
    {ERROR_SUCCESS, u"Everything went well."},
    {ERROR_INVALID_FUNCTION, u"This function is not possible here."},
    {ERROR_FILE_NOT_FOUND, u"The file could not be found."},
    {ERROR_PATH_NOT_FOUND, u"The folder could not be found."},
    {ERROR_TOO_MANY_OPEN_FILES, u"Too many files are open."},
    {ERROR_ACCESS_DENIED, u"Access was denied."},
    {ERROR_INVALID_HANDLE, u"The handle is not valid."},
    {ERROR_NOT_ENOUGH_MEMORY, u"There is not enough memory for this."},
    {ERROR_INVALID_DATA, u"The data are not valid."},
    {ERROR_OUTOFMEMORY, u"There is not enough memory to finish this."},
    {ERROR_WRITE_PROTECT, u"The medium is write-protected."},
    {ERROR_WRITE_FAULT, u"Writing to the device failed."},
    {ERROR_READ_FAULT, u"Reading from the device failed."},
    {ERROR_SHARING_VIOLATION, u"The file is in use by another program."},
    {ERROR_LOCK_VIOLATION, u"Another program has locked a part of the file."},
    {ERROR_HANDLE_EOF, u"The end of the file was reached."},
    {ERROR_HANDLE_DISK_FULL, u"The disk is full."},
    {ERROR_NOT_SUPPORTED, u"The request is not supported."},
    {ERROR_FILE_EXISTS, u"The file is there already."},
    {ERROR_INVALID_PARAMETER, u"A parameter is not right."},
    {ERROR_BROKEN_PIPE, u"The pipe was closed at its other end."},
    {ERROR_OPEN_FAILED, u"The file could not be opened."},
    {ERROR_DISK_FULL, u"There is not enough room on the disk."},
    {ERROR_CALL_NOT_IMPLEMENTED, u"This function does not exist on this system."},
    {ERROR_INSUFFICIENT_BUFFER, u"The buffer given is too small."},
    {ERROR_INVALID_NAME, u"The name of the file or folder is not valid."},
    {ERROR_MOD_NOT_FOUND, u"The module could not be found."},
    {ERROR_PROC_NOT_FOUND, u"The module has no such function."},
    {ERROR_ALREADY_EXISTS, u"There is such a thing already."},
    {ERROR_BAD_EXE_FORMAT, u"The module is not one that this system can load."},
    {ERROR_FILENAME_EXCED_RANGE, u"The file name is too long."},
    {ERROR_FILE_TOO_LARGE, u"The file is larger than can be handled."},
    {ERROR_MORE_DATA, u"There are more data than the buffer can hold."},
    {ERROR_NO_MORE_ITEMS, u"There are no more items."},
    {ERROR_DIRECTORY, u"The name of the folder is not valid."},
    {ERROR_OPERATION_ABORTED, u"The operation was broken off."},
    {ERROR_NOACCESS, u"A place in memory could not be reached."},
    {ERROR_FILE_INVALID, u"The file has changed from outside and can no longer be read."},
    {ERROR_BADDB, u"The settings store is damaged."},
    {ERROR_CANTREAD, u"The settings store could not be read."},
    {ERROR_CANTWRITE, u"The settings store could not be written."},
    {ERROR_KEY_DELETED, u"The key has been deleted."},
    {ERROR_IO_DEVICE, u"The device failed while reading or writing."},
    {ERROR_NOT_FOUND, u"Nothing was found under that name."},
    {ERROR_CANCELLED, u"The user cancelled this."},
    {ERROR_CONNECTION_REFUSED, u"The other computer refused the connection."},
    {ERROR_NETWORK_UNREACHABLE, u"The network cannot be reached."},
    {ERROR_HOST_UNREACHABLE, u"The other computer cannot be reached."},
    {ERROR_CONNECTION_ABORTED, u"The connection was broken off on this side."},
    {ERROR_TIMEOUT, u"The time allowed for this has run out."},
    {ERROR_RESOURCE_DATA_NOT_FOUND, u"The file has no resources."},
    {ERROR_RESOURCE_TYPE_NOT_FOUND, u"The file has no resource of this type."},
    {ERROR_RESOURCE_NAME_NOT_FOUND, u"The file has no resource of this name."},
    {12002, u"The server did not answer in time."},
    {12005, u"The web address is not valid."},
    {12006, u"The web address is of a kind that is not supported."},
    {12007, u"The name of the server could not be resolved."},
    {12017, u"The request was broken off."},
    {12029, u"No connection to the server could be made."},
    {12030, u"The connection to the server was lost."},
    {12031, u"The server reset the connection."},
    {12037, u"The certificate of the server has expired or is not valid yet."},
    {12038, u"The certificate of the server was issued for another name."},
    {12044, u"The server asks for a certificate of the client."},
    {12045, u"The certificate of the server comes from an authority that is not trusted."},
    {12057, u"It could not be checked whether the certificate of the server was revoked."},
    {12150, u"The answer of the server lacks a header."},
    {12152, u"The answer of the server could not be understood."},
    {12156, u"The server redirects too often."},
    {12157, u"A secure channel to the server could not be set up."},
    {12169, u"The certificate of the server is not valid."},
    {12170, u"The certificate of the server has been revoked."},
    {12175, u"The secure connection to the server failed."},
    {12178, u"The proxy could not be found automatically."},
    {static_cast<DWORD>(E_NOTIMPL), u"This is not implemented."},
    {static_cast<DWORD>(E_NOINTERFACE), u"There is no such interface."},
    {static_cast<DWORD>(E_POINTER), u"A pointer is not valid."},
    {static_cast<DWORD>(E_ABORT), u"The operation was aborted."},
    {static_cast<DWORD>(E_FAIL), u"The operation failed for a reason that is not known."},
    {static_cast<DWORD>(E_UNEXPECTED), u"Something unexpected went wrong."},
    {static_cast<DWORD>(DISP_E_MEMBERNOTFOUND), u"The object has no such member."},
    {static_cast<DWORD>(DISP_E_TYPEMISMATCH), u"The type does not fit."},
    {static_cast<DWORD>(DISP_E_UNKNOWNNAME), u"The name is not known."},
    {static_cast<DWORD>(DISP_E_BADINDEX), u"The index is not valid."},
    {static_cast<DWORD>(STG_E_INVALIDFUNCTION), u"The stream cannot do this."},
    {static_cast<DWORD>(STG_E_FILENOTFOUND), u"The stream's file could not be found."},
    {static_cast<DWORD>(STG_E_ACCESSDENIED), u"Access to the stream was denied."},
    {static_cast<DWORD>(STG_E_WRITEFAULT), u"Writing to the stream failed."},
    {static_cast<DWORD>(STG_E_READFAULT), u"Reading from the stream failed."},
    {static_cast<DWORD>(STG_E_MEDIUMFULL), u"There is no room left for the stream."},
    {static_cast<DWORD>(CLASS_E_NOAGGREGATION), u"The class cannot be aggregated."},
    {static_cast<DWORD>(CLASS_E_CLASSNOTAVAILABLE), u"The module does not have this class."},
    {static_cast<DWORD>(REGDB_E_CLASSNOTREG), u"The class is not registered."},
    {static_cast<DWORD>(CO_E_NOTINITIALIZED), u"The component system has not been initialised."},
    {static_cast<DWORD>(CO_E_CLASSSTRING), u"The text does not name a class."},
    {static_cast<DWORD>(CO_E_DLLNOTFOUND), u"The module of the class could not be found."},
    {static_cast<DWORD>(WINCODEC_ERR_WRONGSTATE), u"The imaging component is in the wrong state for this."},
    {static_cast<DWORD>(WINCODEC_ERR_VALUEOUTOFRANGE), u"A value of the picture is out of its range."},
    {static_cast<DWORD>(WINCODEC_ERR_UNKNOWNIMAGEFORMAT), u"The format of the picture is not known."},
    {static_cast<DWORD>(WINCODEC_ERR_UNSUPPORTEDVERSION), u"The picture has a version that is not supported."},
    {static_cast<DWORD>(WINCODEC_ERR_NOTINITIALIZED), u"The imaging component is not initialised."},
    {static_cast<DWORD>(WINCODEC_ERR_PROPERTYNOTFOUND), u"The property could not be found in the picture."},
    {static_cast<DWORD>(WINCODEC_ERR_PROPERTYNOTSUPPORTED), u"The property of the picture is not supported."},
    {static_cast<DWORD>(WINCODEC_ERR_CODECNOTHUMBNAIL), u"The picture has no preview."},
    {static_cast<DWORD>(WINCODEC_ERR_COMPONENTNOTFOUND), u"No imaging component knows this kind of file."},
    {static_cast<DWORD>(WINCODEC_ERR_IMAGESIZEOUTOFRANGE), u"The picture is too large."},
    {static_cast<DWORD>(WINCODEC_ERR_BADIMAGE), u"The picture is damaged."},
    {static_cast<DWORD>(WINCODEC_ERR_BADHEADER), u"The header of the picture is not right."},
    {static_cast<DWORD>(WINCODEC_ERR_FRAMEMISSING), u"The picture has no frame."},
    {static_cast<DWORD>(WINCODEC_ERR_BADMETADATAHEADER), u"The metadata of the picture are damaged."},
    {static_cast<DWORD>(WINCODEC_ERR_BADSTREAMDATA), u"The picture's stream holds damaged data."},
    {static_cast<DWORD>(WINCODEC_ERR_STREAMWRITE), u"The picture's stream could not be written."},
    {static_cast<DWORD>(WINCODEC_ERR_STREAMREAD), u"The picture's stream could not be read."},
    {static_cast<DWORD>(WINCODEC_ERR_STREAMNOTAVAILABLE), u"The picture's stream is not available."},
    {static_cast<DWORD>(WINCODEC_ERR_UNSUPPORTEDPIXELFORMAT),
     u"The pixel format of the picture is not supported."},
    {static_cast<DWORD>(WINCODEC_ERR_UNSUPPORTEDOPERATION), u"The operation is not supported for this picture."},
};

constexpr bool Before(const Message &message, DWORD code)
{
    return message.code < code;
}

static_assert(std::is_sorted(std::begin(Messages), std::end(Messages),
                             [](const Message &a, const Message &b) { return a.code < b.code; }));

// An English sentence that ends in a full stop, or null if the code has none. A Win32 error may be given by its own
// number or as an HRESULT.
const WCHAR *FindSystemMessage(DWORD code)
{
    constexpr DWORD failureOfWin32 = 0x80070000;
    const DWORD wanted = (code & 0xFFFF0000) == failureOfWin32 ? code & 0xFFFF : code;
    const auto found = std::lower_bound(std::begin(Messages), std::end(Messages), wanted, Before);
    return found != std::end(Messages) && found->code == wanted ? found->text : nullptr;
}
} // namespace

DWORD WINAPI GetLastError()
{
    return lastError;
}

void WINAPI SetLastError(DWORD code)
{
    lastError = code;
}

// For the system's own messages, in a new buffer. Messages of modules are not supported, and the system's messages have
// no inserts.
DWORD WINAPI FormatMessageW(DWORD flags, LPCVOID, DWORD code, DWORD, LPWSTR buffer, DWORD, va_list *)
{
    constexpr DWORD needed =
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
    // With all bits of the mask set, line breaks of the message become blanks.
    const bool breaksLine = flags == needed;
    if ((!breaksLine && flags != (needed | FORMAT_MESSAGE_MAX_WIDTH_MASK)) || buffer == nullptr)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    auto &allocated = *reinterpret_cast<LPWSTR *>(buffer);
    allocated = nullptr;
    const WCHAR *const message = FindSystemMessage(code);
    if (message == nullptr)
    {
        SetLastError(ERROR_MR_MID_NOT_FOUND);
        return 0;
    }
    const WideText text = WideText(message) + (breaksLine ? u"\r\n" : u" ");
    allocated = static_cast<LPWSTR>(GlobalAlloc(GMEM_FIXED, (text.size() + 1) * sizeof(WCHAR)));
    if (allocated == nullptr)
    {
        return 0;
    }
    std::copy_n(text.c_str(), text.size() + 1, allocated);
    return static_cast<DWORD>(text.size());
}
