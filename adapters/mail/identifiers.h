#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace kalvo::mail {

using IdentifierKey = std::array<std::uint8_t, 16>;

// What an identifier stands for. The first three bind it to its store, server and mailbox and are not written into
// it; whoever reads it says which tree it has to belong to.
struct Binding {
  const IdentifierKey& key;
  std::string_view server;   // without regard to case
  std::string_view mailbox;  // the mailbox's place in the store; "" for the public folders
};

struct MessageKeys {
  std::string folder;
  std::string message;
};

// Identifiers are letters, digits, "-" and "_": they stand in addresses and attributes as they are.
std::string FolderIdentifier(const Binding& binding, std::string_view folder);
std::string MessageIdentifier(const Binding& binding, std::string_view folder, std::string_view message);

// What an identifier stands for. One that was not issued for this binding fails with 0xE1C1002F.
std::string ReadFolderIdentifier(const Binding& binding, std::string_view identifier);
MessageKeys ReadMessageIdentifier(const Binding& binding, std::string_view identifier);

// A keyed check value of any bytes: SipHash-2-4 with its 128-bit result.
using CheckValue = std::array<std::uint8_t, 16>;
CheckValue KeyedHash(const IdentifierKey& key, std::string_view bytes);

}  // namespace kalvo::mail
