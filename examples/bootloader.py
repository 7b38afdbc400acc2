#!/usr/bin/env python3
"""A device with a bootloader on a pseudo-terminal: LARK-32 of device.txt, for Linux.

Prints the name of its port, then answers until it is stopped. Shows how little a device needs; it
does not model flash. Written from the description of the protocol alone."""

import os
import pty
import termios
import tty

VERSION = bytes.fromhex("0110")
FLASH_START, FLASH_END, PAGE, ROW, WORD = 0x800, 0x8000, 0x400, 0x80, 2
EEPROM_SIZE, EEPROM_ROW = 0x200, 0x10
SYNC, ESCAPE, TERMINATOR = 0x55, 0x05, 0x04
PROBE_RATE, SEARCH_RATE, OWN_RATE = termios.B9600, termios.B460800, termios.B115200


def frame(payload):
    escaped = bytearray()
    for byte in payload + bytes([-sum(payload) & 0xFF]):
        escaped += bytes([ESCAPE, byte] if byte in (SYNC, ESCAPE, TERMINATOR) else [byte])
    return bytes([SYNC, SYNC]) + escaped + bytes([TERMINATOR])


class Receiver:
    """Finds the frames in a stream of bytes and drops everything else."""

    def __init__(self):
        self.state, self.body = "idle", bytearray()

    def take(self, byte):
        """Returns the payload of the frame that this byte completes, or None."""
        if self.state in ("idle", "one sync"):
            following = {"idle": "one sync", "one sync": "body"}
            self.state = following[self.state] if byte == SYNC else "idle"
            self.body = bytearray()
        elif self.state == "escape":
            self.body.append(byte)
            self.state = "body" if byte in (SYNC, ESCAPE, TERMINATOR) else "idle"
        elif byte == ESCAPE:
            self.state = "escape"
        elif byte == SYNC:
            self.state = "one sync" if self.body else "body"
        elif byte == TERMINATOR:
            self.state = "idle"
            if len(self.body) > 1 and sum(self.body) & 0xFF == 0:
                return bytes(self.body[:-1])
        else:
            self.body.append(byte)
        return None


class Device:
    def __init__(self):
        self.running = False
        self.flash = bytearray(b"\xff" * FLASH_END)
        self.eeprom = bytearray(b"\xff" * EEPROM_SIZE)

    def carry_out(self, payload):
        """Carries out a command and returns the payload of the answer, or None if there is none.
        Bounds and lengths are checked first. Reads beyond the end are answered in full length."""
        if payload == b"\0\2":
            return payload + VERSION
        if payload == b"\0\0":
            self.running = False
        if len(payload) < 5:
            return None
        command, count, address = payload[0], payload[1], int.from_bytes(payload[2:5], "little")
        data = payload[5:]
        if command == 1 and not data and address < FLASH_END:
            return payload + self.flash[address:address + count * WORD].ljust(count * WORD)
        if command == 4 and not data and address < EEPROM_SIZE:
            return payload + self.eeprom[address:address + count].ljust(count)
        if command == 2 and len(data) == ROW and self.is_free(address, ROW):
            self.flash[address:address + ROW] = data
            return b"\2"
        if command == 5 and len(data) == EEPROM_ROW and address + EEPROM_ROW <= EEPROM_SIZE:
            self.eeprom[address:address + EEPROM_ROW] = data
            return b"\5"
        if command == 3 and not data and self.is_free(address, PAGE):
            end = min(address + count * PAGE, FLASH_END)
            self.flash[address:end] = b"\xff" * (end - address)
            return b"\3"
        return None

    @staticmethod
    def is_free(address, unit):
        return FLASH_START <= address < FLASH_END and address % unit == 0


def serve(device, master, slave):
    receiver = Receiver()
    while True:
        for byte in os.read(master, 4096):
            rate = termios.tcgetattr(slave)[4]
            if rate == PROBE_RATE and byte == SYNC and not device.running:
                device.running = True
                os.write(master, b"QV" + VERSION)
            payload = receiver.take(byte) if rate in (SEARCH_RATE, OWN_RATE) else None
            if payload and (rate == OWN_RATE or device.running and payload == b"\0\2"):
                device.running = True
                answer = device.carry_out(payload)
                if answer:
                    os.write(master, frame(answer))


def main():
    master, slave = pty.openpty()  # the slave stays open, so that hosts can reconnect
    tty.setraw(slave)
    print(os.ttyname(slave), flush=True)
    serve(Device(), master, slave)


if __name__ == "__main__":
    main()
