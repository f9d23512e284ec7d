"""The parts of a Markdown page that lead somewhere: headings and links. Code has none."""
import re

HEADING = re.compile(r"^(#+) (.+?)\s*$")
LINK = re.compile(r"(\[[^\]]*\]\()([^)\s]+)(\))")
_CODE = re.compile(r"`[^`\n]*`")


def slug(heading):
    """The anchor of a heading, as every web page of Markdown has it."""
    return re.sub(r"[^\w\- ]", "", heading.strip().lower()).replace(" ", "-")


def lines(text):
    """Yields each line, and whether it is prose: a fenced block is none."""
    fenced = False
    for line in text.splitlines():
        fence = line.lstrip().startswith("```")
        yield line, not (fence or fenced)
        fenced ^= fence


def anchors(text):
    """The anchors of all headings."""
    matches = (HEADING.match(line) for line, prose in lines(text) if prose)
    return {slug(match[2]) for match in matches if match}


def links(text):
    """The targets of all links and pictures."""
    prose = "\n".join(line if is_prose else "" for line, is_prose in lines(text))
    return [match[2] for match in LINK.finditer(_CODE.sub("", prose))]
