// Small helpers shared by the console's files: text conversion between the
// command line (UTF-8) and the host (wide), and finding objects by handle.
#ifndef VORA_HOST_CONSOLE_COMMON_H
#define VORA_HOST_CONSOLE_COMMON_H

#include <string>

#include "vora/arx.h"

namespace vora_console {

std::wstring widen(const std::string& s);
std::string narrow(const ACHAR* s);

// Prints "vora: MESSAGE" on standard error and answers the exit status 1.
int fail(const std::string& message);

// The object of the drawing with the hexadecimal handle text; false (and id
// left alone) for a malformed handle or one that no object has.
bool findByHandle(AcDbDatabase* db, const std::string& handleText, AcDbObjectId& id);

// The object's handle as upper-case hexadecimal text.
std::string handleOf(const AcDbObject* object);

}  // namespace vora_console

#endif
