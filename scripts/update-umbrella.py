#!/usr/bin/env python3
"""Rewrites X-Platform/BrindleImaging.h so that it includes every public header of the library."""
import pathlib

top = pathlib.Path(__file__).resolve().parent.parent
umbrella = top / "X-Platform" / "BrindleImaging.h"
headers = sorted(h.name for folder in ("X-Platform", "Platform") if (top / folder).exists()
                 for h in (top / folder).rglob("*.h") if h != umbrella)
umbrella.write_text("#pragma once\n// Every public header of the imaging library, and the foundation's.\n\n"
                    '#include "BrindleCore.h"\n' + "".join(f'#include "{h}"\n' for h in headers))
