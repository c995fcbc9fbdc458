// The XML library: documents in memory, their reader and their writer.
#pragma once

#include "trellis/file_streams.h"
#include "trellis/tl_string.h"
#include "trellis/xml_doc.h"
#include "trellis/xml_format.h"
#include "trellis/xml_node.h"
#include "trellis/xml_path.h"
#include "trellis/xml_reader.h"
#include "trellis/xml_text.h"
#include "trellis/xml_writer.h"
