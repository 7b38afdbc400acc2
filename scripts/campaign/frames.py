"""The frames on the line, from the frame log of zserial and the trace of the simulator."""

SYNC, ESCAPE, TERMINATOR = 0x55, 0x05, 0x04


def payload_of(frame):
    """Returns the payload of a valid frame, or None."""
    if len(frame) < 4 or frame[0] != SYNC or frame[1] != SYNC or frame[-1] != TERMINATOR:
        return None
    body = bytearray()
    escaped = False
    for byte in frame[2:-1]:
        if byte == ESCAPE and not escaped:
            escaped = True
            continue
        body.append(byte)
        escaped = False
    return bytes(body[:-1]) if len(body) > 1 and sum(body) & 0xFF == 0 else None


def read_log(path):
    """Returns the payloads sent and received in valid frames, from a log written by "-x"."""
    sent, received = [], []
    for line in path.read_text(encoding="ascii").split() if path.exists() else []:
        payload = payload_of(bytes.fromhex(line[3:]))
        if payload is not None:
            (sent if line.startswith("TX:") else received).append(payload)
    return sent, received


def read_trace(path):
    """Returns the payloads of the commands that the device has carried out, from its trace."""
    return [bytes.fromhex(fields["payload"]) for _, fields in _commands(path)
            if fields["answer"] in ("data", "ack")]


def gave_up_waiting(log, trace):
    """Returns whether zserial repeated a command although the device had answered everything that it
    received. In a run whose faults lose and delay nothing, the cause is a lack of processor time, and
    all later commands have different numbers."""
    commands = _commands(trace)
    if any(fields["answer"] == "refused" and fields["faults"] == "none" for _, fields in commands):
        return False
    probes = [kind for kind, _ in commands if kind == "probe"]
    lines = log.read_text(encoding="ascii").split() if log.exists() else []
    ways = [line[:3] for line in lines] + ["TX:"]
    return len(probes) > 1 or ("TX:", "TX:") in zip(ways, ways[1:])


def _commands(path):
    """Returns the kind and the fields of every command in a trace."""
    lines = [line.split() for line in path.read_text(encoding="ascii").splitlines()]
    return [(words[3], dict(word.split("=", 1) for word in words if "=" in word))
            for words in lines]
