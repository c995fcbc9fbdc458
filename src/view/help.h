// The help file, shown by the system's own viewer.
#pragma once

#include "orlo/orlowin.h"

/// HtmlHelpA.
using HtmlHelpFn = HWND(WINAPI*)(HWND caller, LPCSTR file, UINT command, DWORD_PTR data);

/// Shows the help's contents above `caller`, with which the viewer closes. Nothing happens where
/// the system has no viewer, or the viewer no file.
void open_help(HWND caller);

/// The same by a given viewer.
void open_help(HWND caller, HtmlHelpFn html_help);
