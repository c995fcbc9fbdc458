// How a query of WMI runs and what becomes of its instances, on any objects with WMI's interfaces.
#pragma once

#include "orlo/orlowin.h"
#include "platform/owned_com.h"
#include "platform/wmi.h"
// This needs what orlowin.h brings.
#include <wbemcli.h>

/// Connects to a namespace and runs a query there, as WmiQuery::Execute tells.
bool run_wmi_query(IWbemLocator& locator, const char* query, const char* name_space,
                   WmiInstances& results);

/// Appends the instances to come to `results`; else as WmiQuery::Execute tells.
bool read_wmi_instances(IEnumWbemClassObject& instances, WmiInstances& results);
