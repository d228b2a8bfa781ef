#!/usr/bin/env python3
"""The translations of the window, host/translations/scenepane_LANGUAGE.ts.

Without an option: adds new texts of the sources to the files, removes those that are gone, writes the English plurals,
and lists what is still to be translated. With --check: changes nothing, and fails when a text is missing, unfinished or
no longer in the sources, when a translation has other placeholders than its source, or a mnemonic where the source
has none, or when the sources have a text that lupdate does not find. lupdate is that of the Debian package qt6-l10n-tools.
"""
import argparse
import html
import re
import shutil
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ElementTree
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
FOLDER = ROOT / "host" / "translations"
LANGUAGES = {"de": [], "en": ["-pluralonly"]}  # English texts are in the sources, but for their plurals


def lupdate():
    for name in ("/usr/lib/qt6/bin/lupdate", "lupdate6", "lupdate"):
        if path := shutil.which(name):
            return path
    sys.exit("translations.py: lupdate is missing; install qt6-l10n-tools")


def update(file, language):
    """Brings a file to the texts of the sources; what is gone from them is removed.

    Returns what lupdate complains about, for example a tr() without a class.
    """
    command = [lupdate(), "-silent", "-locations", "none", "-no-obsolete", "-source-language", "en",
               "-target-language", language, *LANGUAGES[language], str(ROOT / "host"), "-ts", str(file)]
    return subprocess.run(command, check=True, stderr=subprocess.PIPE, text=True).stderr.splitlines()


# A function or lambda with a text among its parameters: name, parameter, statements up to the first brace.
FUNCTION = re.compile(
    r"(\w+)\s*(?:=\s*\[[^\]]*\]\s*)?\([^(){};]*\bconst char\s*\*\s*(?:const\s+)?(\w+)[^(){};]*\)[^(){};]*\{([^{}]*)")


def hidden_texts(source):
    """Literals that a function of the source passes on to tr(): lupdate finds those in a direct call only."""
    for name, parameter, body in FUNCTION.findall(source):
        if not re.search(rf"\b(?:tr|translate|TranslatedText)\s*\([^;]*\b{parameter}\b", body):
            continue
        for call in re.finditer(rf"(?<!::)\b{name}\(\s*\"", source):
            yield source.count("\n", 0, call.start()) + 1, name


def faults_of_sources():
    for file in sorted([*(ROOT / "host").glob("*.cpp"), *(ROOT / "host").glob("*.h")]):
        for line, name in hidden_texts(file.read_text(encoding="utf-8")):
            yield f"{file.name}:{line}: lupdate does not find the text in {name}(): call tr() of a class with it"


def forms(message):
    """The translation, or its plural forms."""
    translation = message.find("translation")
    numerus = translation.findall("numerusform")
    return [form.text or "" for form in numerus] if numerus else [translation.text or ""]


def messages(file):
    for context in ElementTree.parse(file).getroot().findall("context"):
        for message in context.findall("message"):
            yield context.findtext("name"), message


def keys(file):
    return {(context, message.findtext("source"), message.findtext("comment"), message.get("numerus"))
            for context, message in messages(file)}


def placeholders(text):
    return set(re.findall(r"%L?\d+|%L?n", text))


def has_mnemonic(text):
    return re.search(r"&[^&\s]", text.replace("&&", "")) is not None


def faults(file):
    """What is wrong with the translations of a file, one line each."""
    for context, message in messages(file):
        source = message.findtext("source")
        if message.find("translation").get("type") is not None or not all(forms(message)):
            yield f"{context}: not translated: {source!r}"
            continue
        for form in forms(message):
            missing, more = placeholders(source) - placeholders(form), placeholders(form) - placeholders(source)
            # "one object" needs no number.
            if more or (missing and not (message.get("numerus") and missing <= {"%n", "%Ln"})):
                yield f"{context}: other placeholders: {source!r}: {form!r}"
            if has_mnemonic(source) != has_mnemonic(form):
                yield f"{context}: a mnemonic in one of the two only: {source!r}: {form!r}"
            if source.endswith("...") != form.endswith("..."):
                yield f"{context}: '...' at the end of one of the two only: {source!r}: {form!r}"


def write_english_plurals(file):
    """"%n object(s)" becomes "%n object" and "%n objects"; a text without "(s)" is the same in both."""
    text = file.read_text(encoding="utf-8")

    def fill(match):
        source = match.group(1)
        one, many = source.replace("(s)", ""), source.replace("(s)", "s")
        return (f"<source>{source}</source>\n        <translation>\n            <numerusform>{one}</numerusform>\n"
                f"            <numerusform>{many}</numerusform>\n        </translation>")

    pattern = r"<source>([^<]*)</source>\s*<translation type=\"unfinished\">.*?</translation>"
    file.write_text(re.sub(pattern, fill, text, flags=re.DOTALL), encoding="utf-8")


def without_mnemonic(text):
    """The text, and whether it has a mnemonic: a label and a menu may have the same words."""
    text = html.unescape(text)
    return text.replace("&", ""), has_mnemonic(text)


ENTRY = re.compile(r"<source>([^<]*)</source>((?:\s*<comment>[^<]*</comment>)?)\s*(<translation.*?</translation>)", re.DOTALL)


def keep_where_a_mnemonic_moved(file, before):
    """Gives a text of which only the mnemonic changed the translation that it had, with that one's mnemonic."""
    had = {without_mnemonic(source): translation for source, _, translation in ENTRY.findall(before)
           if "unfinished" not in translation and "vanished" not in translation}

    def fill(match):
        source, comment, translation = match.groups()
        kept = had.get(without_mnemonic(source))
        if "unfinished" not in translation or kept is None:
            return match.group(0)
        return f"<source>{source}</source>{comment}\n        {kept}"

    file.write_text(ENTRY.sub(fill, file.read_text(encoding="utf-8")), encoding="utf-8")


def check():
    found = list(faults_of_sources())
    with tempfile.TemporaryDirectory() as folder:
        for language in LANGUAGES:
            file = FOLDER / f"scenepane_{language}.ts"
            now = Path(folder) / file.name
            shutil.copy(file, now)
            complaints = update(now, language)
            found += [line for line in complaints if "cannot be called without context" in line and line not in found]
            for context, source, *_ in sorted(keys(file) - keys(now), key=str):
                found.append(f"{file.name}: {context}: no longer in the sources: {source!r}")
            found += [f"{file.name}: {fault}" for fault in faults(now)]
            if not keys(now):
                found.append(f"{file.name}: no texts were found in the sources")
    return found


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--check", action="store_true", help="change nothing; fail when a translation is not current")
    if parser.parse_args().check:
        found = check()
        print(*found, sep="\n")
        if found:
            sys.exit(f"{len(found)} faults; scripts/translations.py brings the files to the texts of the sources")
        return
    for language in LANGUAGES:
        file = FOLDER / f"scenepane_{language}.ts"
        before = file.read_text(encoding="utf-8") if file.exists() else ""
        print(*update(file, language), sep="\n")
        keep_where_a_mnemonic_moved(file, before)
        if language == "en":
            write_english_plurals(file)
        print(*(f"{file.name}: {fault}" for fault in faults(file)), sep="\n")
    print(*faults_of_sources(), sep="\n")


if __name__ == "__main__":
    main()
