"""The pieces that the tests stand on: a screen, a template prefix, desks with seeded prefixes."""

import contextlib
import functools
import os
from pathlib import Path

import pytest

from support import registry, trace
from support.driver import Driver
from support.prefix import Prefix, make_template
from support.program import Desk
from support.screen import Screen
from support.setups import Setups

ROOT = Path(__file__).resolve().parents[2]
BINARIES = Path(os.environ.get("ZOLVANE_BINARIES", ROOT / "build/win32"))
SCREENSHOTS = ROOT / "build/screenshots"

ENGLISH, GERMAN = "en_GB.UTF-8", "de_DE.UTF-8"

# What tells how clicks, keys and the focus came to go where they went.
TRACE_CHANNELS = "+timestamp,+pid,+tid,+event,+x11drv,+cursor,+menu,+win"


def pytest_addoption(parser):
    parser.addoption("--times", type=int, default=1, help="run each test so many times")
    parser.addoption("--wine-trace", action="store_true",
                     help="keep Wine's trace of each test that fails in build/traces")


def pytest_configure(config):
    if config.getoption("wine_trace"):
        trace.current = trace.Trace(ROOT / "build/traces", TRACE_CHANNELS)


def pytest_generate_tests(metafunc):
    times = metafunc.config.getoption("times")
    if times > 1:
        metafunc.fixturenames.append("turn")
        metafunc.parametrize("turn", range(times))


def pytest_runtest_setup():
    trace.current.begin()


def pytest_unconfigure():
    trace.current.begin()


@pytest.hookimpl(hookwrapper=True)
def pytest_runtest_makereport(item):
    outcome = yield
    if outcome.get_result().failed:
        trace.current.keep(item.name, item.funcargs.get("screen"))


@pytest.fixture(scope="session")
def screen():
    with contextlib.closing(Screen()) as made:
        yield made


@pytest.fixture(scope="session")
def template(screen):
    return make_template(ROOT / "build/e2e", screen.env)


@pytest.fixture(scope="session", autouse=True)
def binaries():
    for name in ("zolvane.exe", "zolvane-driver.exe", "zolvane-probe.dll", "zolvane-installer.exe"):
        assert (BINARIES / name).exists(), f"{BINARIES / name} isn't built"


@contextlib.contextmanager
def desk_on(screen, template, keys=(), usages=None, files=(), lc_all=ENGLISH, dpi=None, wmi=False):
    """A Desk on a screen, cleared away at the end. `dpi`: the resolution that the prefix tells of
    any screen. `wmi`: whether it has WMI."""
    with contextlib.ExitStack() as stack:
        prefix = stack.enter_context(contextlib.closing(Prefix(template, screen.env, lc_all, wmi)))
        for file in files:
            prefix.make_file(file)
        if keys or usages:
            prefix.import_registry(registry.reg_text(keys, usages))
        if dpi is not None:
            prefix.import_registry(registry.resolution_text(dpi))
        driver = stack.enter_context(contextlib.closing(Driver(
            BINARIES / "zolvane-driver.exe",
            dict(prefix.env, WINEDEBUG=trace.current.channels),
            stack.enter_context(trace.current.open()))))
        yield Desk(screen, prefix, driver, BINARIES / "zolvane.exe")


@pytest.fixture(scope="session")
def make_desk(screen, template):
    """A context manager: make_desk(keys, usages, files, lc_all, dpi, wmi) gives a Desk and clears
    it away."""
    return functools.partial(desk_on, screen, template)


@pytest.fixture(scope="module")
def module_setups(make_desk):
    with make_desk() as desk:
        yield Setups(desk, BINARIES)


@pytest.fixture
def setups(module_setups):
    """The module's prefix with installers in it, cleared of what a test has left running."""
    yield module_setups
    module_setups.end()
