#!/usr/bin/python3
"""Writes files into a C++ source: embed.py SOURCE FILE..."""
import pathlib
import sys

source, files = pathlib.Path(sys.argv[1]), [pathlib.Path(name) for name in sys.argv[2:]]
parts = ['#include "WebFiles.h"\n\nnamespace relay {\n\nnamespace {\n\n']
for index, file in enumerate(files):
    content = file.read_bytes()
    parts.append(f"constexpr char file{index}[] = {{{','.join(str(b if b < 128 else b - 256) for b in content)}}};\n")
parts.append("\n} // namespace\n\nconst std::map<std::string_view, std::string_view> &webFiles() {\n")
parts.append("    static const std::map<std::string_view, std::string_view> all{\n")
for index, file in enumerate(files):
    parts.append(f'        {{"/{file.name}", {{file{index}, sizeof file{index}}}}},\n')
parts.append("    };\n    return all;\n}\n\n} // namespace relay\n")
source.write_text("".join(parts))
