// What the selection window decided: the port, how devices are found, and the IDs involved.
#pragma once

#include <string>

#include "config/config_files.h"

namespace talvex::app {

// The three mode options of the selection window.
enum class SearchMode {
  SingleDevice = 0,  // poll the one ID of the single-ID list
  AllIds = 1,        // search IDs 0..32
  IdList = 2,        // search the 20 IDs of the ID lists (they must all differ)
};

struct StartupChoice {
  std::string port = "sim:0,1,2";
  SearchMode mode = SearchMode::AllIds;
  config::DeviceIdTable ids{};
  int singleDeviceId = 0;
};

}  // namespace talvex::app
