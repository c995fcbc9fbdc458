"""Windows Installer packages of the tests' own: built from packages/*.wxs, installed in a prefix."""

import subprocess
from dataclasses import dataclass
from pathlib import Path
from xml.etree import ElementTree

from .registry import UNINSTALL
from .sources import HKLM32, HKLM64, delete, keys_at, put, text_at

SOURCES = Path(__file__).resolve().parents[1] / "packages"
ELEMENT = "{http://schemas.microsoft.com/wix/2006/wi}"

INSTALLER = "Software\\Microsoft\\Windows\\CurrentVersion\\Installer"
# Where per-machine installations note their properties, whatever the view of the package.
MACHINE = f"{INSTALLER}\\UserData\\S-1-5-18"
CLASSES = "Software\\Classes\\Installer\\Products"


def packed(code):
    """A product code as the installer's keys have it: each field of the GUID turned round, the
    bytes of the last two one by one."""
    digits = code.strip("{}").replace("-", "")
    fields, at = [], 0
    for width in (8, 4, 4) + (2,) * 8:
        fields.append(digits[at:at + width][::-1])
        at += width
    return "".join(fields)


@dataclass(frozen=True)
class Package:
    """What stands in packages/`source`.wxs."""

    source: str
    code: str
    name: str
    version: str
    features: tuple

    @classmethod
    def of(cls, source):
        product = ElementTree.parse(SOURCES / f"{source}.wxs").getroot().find(f"{ELEMENT}Product")
        features = tuple(feature.get("Id") for feature in product.iter(f"{ELEMENT}Feature"))
        return cls(source, product.get("Id"), product.get("Name"), product.get("Version"), features)

    @property
    def packed(self):
        return packed(self.code)

    @property
    def key(self):
        """The path of its Uninstall key, in the view of 32-bit programs."""
        return f"Software\\{UNINSTALL}\\{self.code}"


MEADOW, WICKET, CELLAR = (Package.of(source) for source in ("meadow", "wicket", "cellar"))


def run_installer(desk, *arguments):
    subprocess.run(["wine", "msiexec", *arguments, "/qn"], env=desk.prefix.env, check=True,
                   timeout=120, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                   stderr=subprocess.DEVNULL)


def install(desk, package, *properties):
    """Builds the package and installs it for all users, with its features."""
    file = desk.prefix.folder / "drive_c" / f"{package.source}.msi"
    subprocess.run(["wixl", "-o", str(file), f"{package.source}.wxs"], cwd=SOURCES, check=True,
                   timeout=60)
    seed_features(desk, package)
    run_installer(desk, "/i", f"C:\\{package.source}.msi", "ALLUSERS=1", *properties)


def seed_features(desk, package):
    """Wine looks for a product's features where none of its installations writes any. Values that
    are enough for their names: the parents that stand here aren't asked for."""
    put(desk, HKLM64, f"{INSTALLER}\\Features\\{package.packed}",
        {name: "" for name in package.features})


def remove(desk, package):
    """By the installer; the features that were seeded stay."""
    run_installer(desk, "/x", package.code)


def forget(desk, package):
    """Takes the Uninstall key away, as cleaners do: only the installer knows the product still."""
    delete(desk, HKLM32, package.key)


def seed_patches(desk, package, patches, sid="S-1-5-18"):
    """Names of patches that are applied to a product. A 32-bit program sees the part of the tree
    that no installation writes."""
    for patch in patches:
        put(desk, HKLM32, f"{INSTALLER}\\UserData\\{sid}\\Products\\{package.packed}\\Patches\\{patch}",
            {"DisplayName": f"Patch {patch}", "State": 1})


def clear_patches(desk):
    delete(desk, HKLM32, f"{INSTALLER}\\UserData")


def property_of(desk, package, name):
    """A property that the installation has noted, empty where it has none."""
    return text_at(desk, HKLM64, f"{MACHINE}\\Products\\{package.packed}\\InstallProperties", name)


def product_icon(desk, package):
    return text_at(desk, HKLM64, f"{CLASSES}\\{package.packed}", "ProductIcon")


def installed_order(desk):
    """The packed codes in the order in which the system enumerates them."""
    return [key["name"] for key in keys_at(desk, HKLM64, CLASSES)]


def register(desk, code, name, date, local_package=None):
    """A product as an installation notes it, without one: its row is named and dated so, and tells
    of its package where there is one. A date far from the key's last write stays as it is told."""
    put(desk, HKLM32, f"Software\\{UNINSTALL}\\{code}",
        {"DisplayName": name, "InstallDate": date, "WindowsInstaller": 1})
    if local_package is None:
        return
    put(desk, HKLM64, f"{CLASSES}\\{packed(code)}", {"ProductName": name})
    put(desk, HKLM64, f"{MACHINE}\\Products\\{packed(code)}\\InstallProperties",
        {"WindowsInstaller": 1, "DisplayName": name, "LocalPackage": local_package})


def numbered_code(number):
    return f"{{0F1C0DE5-0000-4000-8000-{number:012X}}}"


def seed_patch(desk, code, key, values, local_package=None):
    """A patch of a product, with what the installer notes of it."""
    user = f"{INSTALLER}\\UserData\\S-1-5-18"
    put(desk, HKLM32, f"{user}\\Products\\{packed(code)}\\Patches\\{key}", values)
    if local_package is not None:
        put(desk, HKLM32, f"{user}\\Patches\\{key}", {"LocalPackage": local_package})


def unregister(desk, code):
    delete(desk, HKLM64, f"{CLASSES}\\{packed(code)}")
    delete(desk, HKLM64, f"{MACHINE}\\Products\\{packed(code)}")
    delete(desk, HKLM32, f"Software\\{UNINSTALL}\\{code}")
