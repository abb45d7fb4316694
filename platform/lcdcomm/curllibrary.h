// libcurl's life in the process.
#pragma once

namespace lcdcomm {

/// Initialises libcurl, once, and keeps it loaded until the process ends: it and the TLS library below can't
/// be unloaded safely, while this plug-in comes and goes. Called before the first transfer is made.
void keepCurlLoaded();

}  // namespace lcdcomm
