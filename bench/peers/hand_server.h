#pragma once

#include <string>

namespace kalvo::peers {

// Serves the alerts of the database over HTTP, all of them read for each page, by threads that keep a connection
// each. Prints {"port"} and serves until it is ended; 3 where the program was built without a web server.
int ServeByHand(const std::string& file);

}  // namespace kalvo::peers
