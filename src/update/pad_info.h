// What a description of a program in the PAD format says.
#pragma once

#include <cstdint>
#include <vector>

#include "orlo/rstring.h"

/// What the publisher tells the users of some version or system. An empty `version` or `id` means
/// all of them.
struct PadMessage {
  String version;
  String id;  ///< a system as "WIN6.1.7601"
  String text;
};

struct PadPerson {
  String first_name;
  String last_name;
  String mail;
};

/// As its numbers stand in the description, which need be no date of any calendar.
struct PadDate {
  uint16_t year = 0;
  uint16_t month = 0;
  uint16_t day = 0;
};

/// Empty or 0 where the description says nothing.
struct PadInfo {
  String programName;
  String programVersion;
  PadDate releaseDate;
  int32_t fileSize = 0;  ///< bytes
  String infoPageUrl;    ///< no element of a description fills it
  String downloadUrl;
  String companyName;
  String companyWebsite;
  PadPerson author;
  PadPerson contact;
  std::vector<PadMessage> messages;  ///< in the order of the document
};
