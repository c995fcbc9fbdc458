// Reading a description in the PAD format, an XML file, with the publisher's messages as an
// extension: qm:messages below the root, with a qm:msg for each.
#pragma once

#include <istream>

#include "update/pad_info.h"

/// False, with `info` untouched or partly filled, if the stream holds no XML or not XML_DIZ_INFO.
bool read_pad(std::istream& stream, PadInfo& info);

/// The texts of all messages for this version and system, with an empty line between two.
String messagesFor(const PadInfo& info, const String& version, const String& systemText);
