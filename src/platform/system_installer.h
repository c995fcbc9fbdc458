// Windows Installer by the functions of its module.
#pragma once

#include <memory>

#include "orlo/module_functions.h"
#include "platform/installer.h"
#include "platform/installer_database.h"

/// An installer on `functions`, which must outlive it. The module is looked up with the first call;
/// where a function is missing there are no products, features and properties.
std::unique_ptr<Installer> make_installer(ORLO::ModuleFunctions& functions);

/// Likewise its databases; where a function is missing none opens (kInstallerOpenFailed).
std::unique_ptr<InstallerDatabases> make_installer_databases(ORLO::ModuleFunctions& functions);
