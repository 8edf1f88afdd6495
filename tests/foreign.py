"""A foreign database, which takes tables through their Arrow streams. It is a package of a registry,
kept in the build tree, and is called through its C interface."""
import ctypes
import subprocess
from ctypes import byref, c_char_p, c_uint64, c_void_p

PACKAGE = "@duckdb/node-bindings-linux-x64"
VERSION = "1.5.6-r.1"


class Missing(Exception):
    """The database is not there and cannot be installed."""


class Database:
    def __init__(self, build):
        library = build / "foreign/node_modules" / PACKAGE / "libduckdb.so"
        if not library.is_file():
            command = ["npm", "install", "--prefix", build / "foreign", "--ignore-scripts"]
            command += ["--no-audit", f"{PACKAGE}@{VERSION}"]
            try:
                subprocess.run(command, check=True, timeout=300, stdout=subprocess.DEVNULL)
            except (OSError, subprocess.SubprocessError) as error:
                raise Missing(f"no foreign database, as {PACKAGE} cannot be installed: {error}")
        self.calls = ctypes.CDLL(str(library))
        self.calls.duckdb_result_error.restype = c_char_p
        self.calls.duckdb_value_double.restype = ctypes.c_double
        ctypes.pythonapi.PyCapsule_GetPointer.restype = c_void_p
        database, self.connection = c_void_p(), c_void_p()
        self.calls.duckdb_open(None, byref(database))
        self.calls.duckdb_connect(database, byref(self.connection))

    def ask(self, query, columns=0):
        """The numbers of the first row, where there is one."""
        result = (c_uint64 * 6)()  # as large as a duckdb_result
        if self.calls.duckdb_query(self.connection, query.encode(), byref(result)) != 0:
            error = self.calls.duckdb_result_error(byref(result)).decode()
            raise SystemExit(f"{query[:200]}: {error}")
        cells = [(byref(result), c_uint64(i), c_uint64(0)) for i in range(columns)]
        values = [self.calls.duckdb_value_double(*cell) for cell in cells]
        self.calls.duckdb_destroy_result(byref(result))
        return values

    def take(self, table):
        """Copies a table into the one named "table": a stream is read once."""
        capsule = ctypes.py_object(table.__arrow_c_stream__())
        stream = c_void_p(ctypes.pythonapi.PyCapsule_GetPointer(capsule, b"arrow_array_stream"))
        self.calls.duckdb_arrow_scan(self.connection, b"stream", stream)
        self.ask('CREATE OR REPLACE TABLE "table" AS FROM stream')
