"""A device as a notebook shows it."""

from __future__ import annotations

import base64
from html import escape
from typing import TYPE_CHECKING

if TYPE_CHECKING:
    from ._device import Device

# More rows make a notebook slow; the rest is a call away.
_MOST_ROWS = 200


def device_html(device: Device, drawing: str) -> str:
    """The drawing, and a table of pins. The drawing is an image, so that its styles stay in it."""
    image = base64.b64encode(drawing.encode()).decode()
    title = escape(str(device.component)) + (
        f" in {escape(device.package)}" if device.package else "")
    return (
        f"<h4>{title}</h4>"
        f'<img alt="{title}" style="max-width: 100%" src="data:image/svg+xml;base64,{image}">'
        "<details><summary>"
        f"{len(device.elements)} port elements, {device.boundary_length} cells, "
        f"{len(device.findings)} findings</summary>{_table(device)}</details>"
    )


def _table(device: Device) -> str:
    rows = ["<tr><th>Port</th><th>Pin</th><th>Mode</th><th>Cells</th></tr>"]
    for pin in device.elements[:_MOST_ROWS]:
        cells = ", ".join(map(str, pin.cells))
        texts = (pin.port, pin.pin or "", pin.declared_mode, cells)
        rows.append("<tr>" + "".join(f"<td>{escape(text)}</td>" for text in texts) + "</tr>")
    more = len(device.elements) - _MOST_ROWS
    note = f"<p>{more} more: see <code>device.elements</code>.</p>" if more > 0 else ""
    return f"<table>{''.join(rows)}</table>{note}"
