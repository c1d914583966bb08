"""Which register an instruction puts between TDI and TDO."""

from __future__ import annotations

from typing import Any

from ._facts import Instruction, Register

# What the standard gives to its own instructions.
_STANDARD = {
    "BYPASS": "BYPASS",
    "CLAMP": "BYPASS",
    "HIGHZ": "BYPASS",
    "EXTEST": "BOUNDARY",
    "SAMPLE": "BOUNDARY",
    "PRELOAD": "BOUNDARY",
    "INTEST": "BOUNDARY",
    "IDCODE": "DEVICE_ID",
    "USERCODE": "DEVICE_ID",
    "ECIDCODE": "ECID",
    "CLAMP_HOLD": "TMP_STATUS",
    "CLAMP_RELEASE": "TMP_STATUS",
    "TMP_STATUS": "TMP_STATUS",
    "INIT_SETUP": "INIT_DATA",
    "INIT_SETUP_CLAMP": "INIT_DATA",
    "INIT_RUN": "INIT_STATUS",
    "IC_RESET": "RESET_SELECT",
}


def instructions_with_registers(
    rows: list[dict[str, Any]],
    registers: list[dict[str, Any]],
    private: list[str],
    boundary_length: int,
) -> list[Instruction]:
    """The instructions of a device, and what is known of the registers that they select."""
    lengths: dict[str, int] = {}
    told: dict[str, tuple[Register, str | None]] = {}
    for row in registers:
        register = Register(row["name"], row["length"], tuple(row["instructions"]))
        if register.length:
            lengths.setdefault(register.name.upper(), register.length)
        for name in register.instructions:
            told.setdefault(name.upper(), (register, row["captures"].get(name)))
    lengths.update({"BYPASS": 1, "DEVICE_ID": 32})
    if boundary_length:
        lengths["BOUNDARY"] = boundary_length
    reserved = {name.upper() for name in private}

    def complete(row: dict[str, Any]) -> Instruction:
        name = row["instruction"].upper()
        chosen, by, captures = _STANDARD.get(name), "standard", None
        if name in told:
            register, captures = told[name]
            chosen, by = register.name, "file"
        return Instruction(row["instruction"], tuple(row["opcodes"]), chosen,
                           lengths.get(chosen.upper()) if chosen else None,
                           by if chosen else None, captures, name in reserved)

    return [complete(row) for row in rows]
