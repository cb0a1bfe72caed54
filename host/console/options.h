// Options of the vora console that other files of host/console/ add: each
// file registers its options from a static initializer, e.g.
//   static const bool registered = vora_console::registerOption({"--layer", true, "NAME  ...", &run});
// Registered options run after the drawing is loaded (and after --list), in
// command-line order, before the drawing is saved.
#ifndef VORA_HOST_CONSOLE_OPTIONS_H
#define VORA_HOST_CONSOLE_OPTIONS_H

#include <string>
#include <vector>

#include "vora/arx.h"

namespace vora_console {

struct Option {
  const char* name;   // "--layer"
  bool takesValue;    // the next argument is its value
  const char* help;   // one line for --help, after the name
  // Returns the exit status: 0 to go on; anything else stops the console
  // (the option has printed its error to standard error).
  int (*run)(AcDbDatabase* db, const std::string& value);
};

bool registerOption(const Option& option);
const std::vector<Option>& registeredOptions();

}  // namespace vora_console

#endif
