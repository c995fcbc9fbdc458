"""What scripts/release.sh makes of the program that has been built, and how it is signed."""

import hashlib
import json
import subprocess
import zipfile
from pathlib import Path

import pytest

ROOT = Path(__file__).resolve().parents[2]
NAME = "zolvane-5.3"


def run(*command, folder=ROOT, **more):
    return subprocess.run(command, cwd=folder, text=True, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, timeout=300, **more)


def release(folder, *switches):
    """Packs what the tests are run on. The tree may be one in which somebody works."""
    made = run("scripts/release.sh", "--dirty", "--from", "build/win32", "--into", str(folder),
               *switches)
    assert made.returncode == 0, made.stdout
    return folder


@pytest.fixture(scope="module")
def made(tmp_path_factory):
    return release(tmp_path_factory.mktemp("release") / "first")


@pytest.fixture(scope="module")
def bill(made):
    return json.loads((made / f"{NAME}.spdx.json").read_text(encoding="utf-8"))


def commit_time():
    return int(run("git", "log", "-1", "--format=%ct").stdout)


def contents(folder):
    return {path.name: path.read_bytes() for path in folder.iterdir()}


def test_a_release_is_a_setup_an_archive_a_bill_of_materials_and_checksums(made):
    assert sorted(contents(made)) == ["SHA256SUMS", f"{NAME}-portable.zip", f"{NAME}-setup.exe",
                                      f"{NAME}.spdx.json"]


def test_the_same_program_packed_twice_gives_the_same_bytes(made, tmp_path):
    assert contents(release(tmp_path / "second")) == contents(made)


def test_the_checksums_are_those_of_the_files(made):
    assert run("sha256sum", "--check", "--strict", "SHA256SUMS", folder=made).returncode == 0
    named = {line.split()[1] for line in (made / "SHA256SUMS").read_text().splitlines()}
    assert named == set(contents(made)) - {"SHA256SUMS"}


def test_the_archive_holds_the_program_its_help_and_its_licences_with_the_commits_time(made):
    with zipfile.ZipFile(made / f"{NAME}-portable.zip") as archive:
        assert archive.namelist() == ["licences.txt", "readme.txt", "zolvane.chm", "zolvane.exe"]
        built = (ROOT / "build/win32/zolvane.exe").read_bytes()
        assert archive.read("zolvane.exe") == built
        licences = archive.read("licences.txt").decode()
        times = {entry.date_time for entry in archive.infolist()}
    for part in ("gnulib", "mingw-w64", "libgcc", "LESSER GENERAL PUBLIC LICENSE"):
        assert part in licences
    # Archives count in steps of two seconds.
    moment = run("date", "-u", "-d", f"@{commit_time() & ~1}", "+%Y %-m %-d %-H %-M %-S").stdout
    assert times == {tuple(map(int, moment.split()))}


def test_the_bill_names_what_is_linked_in_with_version_and_licence(bill):
    packages = {package["name"]: package for package in bill["packages"]}
    assert bill["spdxVersion"] == "SPDX-2.3"
    assert packages["zolvane"]["versionInfo"] == "5.3"
    licences = {name: package["licenseConcluded"] for name, package in packages.items()}
    assert licences["gnulib-regex"] == "LGPL-2.1-or-later"
    assert licences["libgcc"] == licences["libstdc++"] == "GPL-3.0-or-later WITH GCC-exception-3.1"
    assert {"mingw-w64-runtime", "winpthreads", "nsis"} <= set(licences)
    assert all(package["versionInfo"] for package in packages.values())


def test_the_bill_has_each_id_once_and_relates_what_it_has(bill):
    ids = [part["SPDXID"] for part in bill["packages"] + bill["files"]] + [bill["SPDXID"]]
    assert len(ids) == len(set(ids))
    for relation in bill["relationships"]:
        assert {relation["spdxElementId"], relation["relatedSpdxElement"]} <= set(ids), relation


def test_the_bill_has_the_checksums_of_the_files_that_go_out(made, bill):
    told = {file["fileName"]: {check["algorithm"]: check["checksumValue"]
                               for check in file["checksums"]} for file in bill["files"]}
    for name in (f"{NAME}-setup.exe", f"{NAME}-portable.zip"):
        content = (made / name).read_bytes()
        assert told["./" + name] == {"SHA1": hashlib.sha1(content).hexdigest(),
                                     "SHA256": hashlib.sha256(content).hexdigest()}


@pytest.fixture(scope="module")
def certificate(tmp_path_factory):
    folder = tmp_path_factory.mktemp("certificate")
    made = run("openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "30",
               "-subj", "/CN=Zolvane trial", "-addext", "extendedKeyUsage=codeSigning",
               "-keyout", "publisher.key", "-out", "publisher.crt", folder=folder)
    assert made.returncode == 0, made.stdout
    return folder


def sign(certificate, source, target):
    return run("osslsigncode", "sign", "-certs", "publisher.crt", "-key", "publisher.key",
               "-h", "sha256", "-n", "Zolvane", "-i", "https://example.org/zolvane",
               "-in", str(source), "-out", str(target), folder=certificate)


def verify(certificate, file):
    return run("osslsigncode", "verify", "-CAfile", str(certificate / "publisher.crt"), str(file))


def test_a_signed_setup_is_verified_with_its_publishers_certificate(made, certificate, tmp_path):
    signed = tmp_path / "setup.exe"
    done = sign(certificate, made / f"{NAME}-setup.exe", signed)
    assert done.returncode == 0, done.stdout
    verified = verify(certificate, signed)
    assert verified.returncode == 0, verified.stdout
    assert "CN=Zolvane trial" in verified.stdout


def test_an_unsigned_and_a_changed_setup_are_not_verified(made, certificate, tmp_path):
    assert verify(certificate, made / f"{NAME}-setup.exe").returncode != 0
    signed = tmp_path / "setup.exe"
    sign(certificate, made / f"{NAME}-setup.exe", signed)
    content = bytearray(signed.read_bytes())
    content[len(content) // 2] ^= 1
    signed.write_bytes(content)
    assert verify(certificate, signed).returncode != 0


@pytest.fixture
def checkout(tmp_path):
    folder = tmp_path / "checkout"
    assert run("git", "clone", "--quiet", "--no-hardlinks", str(ROOT), str(folder)).returncode == 0
    return folder


def test_a_tree_with_changes_is_refused(checkout):
    (checkout / "README.md").write_text("changed")
    refused = run("scripts/release.sh", folder=checkout)
    assert refused.returncode != 0
    assert "there are changes that aren't committed" in refused.stdout
    assert not (checkout / "build").exists()


@pytest.mark.parametrize("switch", ["--unknown", "--from", "-D"])
def test_a_switch_that_is_not_known_or_lacks_its_value_is_told(switch):
    told = run("scripts/release.sh", switch)
    assert told.returncode == 2
    assert "usage: scripts/release.sh" in told.stdout


def test_a_folder_that_is_no_build_is_told(tmp_path):
    told = run("scripts/release.sh", "--dirty", "--from", str(tmp_path), "--into",
               str(tmp_path / "made"))
    assert told.returncode != 0
    assert "so it is no folder of a build" in told.stdout


@pytest.mark.parametrize("value", ["", "5.", "5.3.1.2.9", "v5", "5.3-beta"])
def test_a_version_that_is_not_made_of_numbers_is_refused(value, tmp_path):
    told = run("cmake", "-S", ".", "--preset", "win32", "-B", str(tmp_path),
               f"-DZOLVANE_VERSION={value}")
    assert told.returncode != 0
    assert "ZOLVANE_VERSION" in told.stdout


