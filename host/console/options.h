// Options of the vora console that other files of host/console/ add: each
// file registers its options from a static initializer, e.g.
//   static const bool registered = vora_console::registerOption({"--dump", true, "HANDLE  ...", nullptr, &run});
// An option has up to two parts. parse runs while the command line is read,
// before the drawing is opened: it records a setting (--module, a filter of
// --list, --json). run runs once the drawing is loaded and --list is printed,
// in command-line order, before the drawing is saved.
#ifndef VORA_HOST_CONSOLE_OPTIONS_H
#define VORA_HOST_CONSOLE_OPTIONS_H

#include <optional>
#include <string>
#include <vector>

#include "vora/arx.h"

namespace vora_console {

struct Option {
  const char* name;   // "--dump"
  bool takesValue;    // the next argument is its value
  const char* help;   // one line for --help, after the name
  // Both return the exit status: 0 to go on; anything else stops the console
  // (the option has printed its error to standard error). Either may be null.
  int (*parse)(const std::string& value);
  int (*run)(AcDbDatabase* db, const std::string& value);
};

bool registerOption(const Option& option);
const std::vector<Option>& registeredOptions();

// A check of the whole command line, run once every option is parsed and
// before the drawing is opened (e.g. --json without --featurelines). Returns
// the exit status, as the option parts do.
bool registerCheck(int (*check)());
const std::vector<int (*)()>& registeredChecks();

// The filter of --list (--layer, --class, --app; list_filter.cpp).
bool listFilterGiven();
// The entities of model space that pass the filter, in drawing order, found
// by the module's entity query. Returns the exit status.
int filteredEntities(std::vector<AcDbObjectId>& ids);

}  // namespace vora_console

#endif
