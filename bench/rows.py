"""The bounds of each row of the benchmarks; the programs define what its sides do."""

from dataclasses import dataclass, field
from typing import Optional


@dataclass
class Row:
    key: str  # the first part of the name
    title: str
    floor: str  # what it is compared with
    ratio: Optional[float] = None  # at most so many times the floor
    extra_ns: Optional[float] = None  # or so many nanoseconds above it
    at_most_ns: Optional[float] = None  # and so many nanoseconds by itself
    peer: str = ""  # the side that a program would use instead
    peer_ratio: Optional[float] = None  # at most so many times the peer
    per: str = ""  # the unit whose time is shown; there are n of it
    items: int = 0  # the number of units, where it isn't n
    flat: bool = False  # the time for each unit doesn't grow with n
    wall: bool = False  # wall time instead of processor time
    # The bound of each, at any n or at one: {"name": 16} or {"name@10000": 16}; None only shows it.
    counters: dict = field(default_factory=dict)


PROGRAMS = {
    "bench_plugin": [
        Row("event", "event from plugin to host and back", "bare Qt signals by value, slot, virtual call", 1.3),
        Row("packet_build", "packet built", "realloc to the exact size", 1.2, per="record", flat=True),
        Row("packet_walk", "packet walked, payloads read", "one private copy, then a pointer", 2, per="record",
            flat=True),
    ],
    "bench_database": [
        Row("select_one", "CLocalDB::SelectOne by key", "the same SQL text, row as hash", 0.65, per="call", items=64,
            flat=True),
        Row("select_all", "CLocalDB::SelectAll", "the same SQL text, row as hash", 1.15, per="row", flat=True),
    ],
    "bench_settings": [
        Row("settings_changed", "flush of changed settings", "one transaction, SQL text: a select and a replace each",
            1.2, peer="KConfig", wall=True, counters={"longest_ms": 16}),
        Row("settings_unchanged", "flush of unchanged settings", "one transaction, SQL text: a select each", 1.15,
            counters={"writes": 0}),
        Row("settings_login", "settings at login, with setters and signals", "SQL text, rows as hashes", 2,
            peer="KConfig", peer_ratio=2),
    ],
    "bench_translation": [
        Row("text", "text looked up", "the same SQL text on an indexed table", at_most_ns=1e3, peer="QTranslator",
            per="text", items=64, flat=True),
        Row("language_first", "first switch of language, 620 texts shown", "a prepared select each, in one transaction",
            at_most_ns=3e6, peer="QTranslator"),
        Row("language_again", "switch back to a language, 620 texts shown", "QHash of the texts", at_most_ns=3e6,
            peer="QTranslator"),
        Row("money_chips", "MoneyToString without look-ups", "digits in a buffer", extra_ns=400),
        Row("money_amount", "MoneyToString of $1,234,567.89", "its four look-ups, and digits in a buffer",
            extra_ns=400, at_most_ns=5e3, peer="ICU"),
        Row("money_spinner", "money spinner's run", "", counters={"statements": 0}),
    ],
    "bench_players": [
        Row("find", "player found by nickname", "QHash of shared pointers", 1.3, per="player", flat=True),
        Row("setter", "setter with one listener", "compare, store, emit", 1.3, per="change", items=1000),
        Row("player", "player made", "QObject with the same 13 fields", per="player",
            counters={"bytes_a_player": 1000}),
        Row("restart", "change of a player who waits to be saved", "one shared queue, without the change itself",
            per="player", flat=True),
        Row("load", "notes loaded into players", "a query of Qt's, hash, set", 1.5, per="note", flat=True),
        Row("save", "saves after such a load", "write-ahead log, a prepared upsert a row", 2, per="note",
            wall=True, counters={"longest_turn_ms@10000": 16}),
    ],
    "bench_sync": [
        Row("sync_build", "JSON for the web server", "a prepared select into a variant map, and QJsonDocument from it",
            1.2, per="note", flat=True),
        Row("sync_take_in", "JSON from the web server taken in",
            "QJsonDocument to a variant map, the upserts, and the load's floor: read back, hash, set", 1.2, per="note",
            flat=True),
    ],
    "bench_network": [
        Row("download", "download from loopback", "bare QTcpSocket into a reserved array", 1.3, per="MiB", wall=True,
            counters={"peak_memory_of_body@64": 1.6, "longest_gap_ms": 50}),
    ],
    "bench_start": [
        Row("start", "start of a host, before its plugins", "QCoreApplication, the six files opened and read once each",
            wall=True, counters={"statements": None, "statements_repeated": 0, "files_opened": None,
                                 "data_files_opened_again": 0}),
    ],
    "bench_ui": [
        Row("sheet", "style sheet with includes", "a reader by indexOf", 3, per="kB", flat=True),
        Row("sheet_broken", "style sheet with an open comment", "a reader by indexOf", 3, per="kB", flat=True),
        Row("columns", "TableView::Recalculate", "the scaling pass", per="column", flat=True),
        Row("columns_width", "the same with 100 columns, by width as power of two", "the scaling pass", per="column", items=100,
            flat=True),
    ],
}


def items(row, n):
    return row.items or (n if row.per else 1)
