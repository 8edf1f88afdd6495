"""Many recordings at once: in threads on this machine, or on a Dask cluster whose workers see the
same files under the same names. Without a cluster it needs the standard library alone, but for
tables(), which gives a Dask frame."""

from ._archive_documents import Row, convert
from ._archive_reports import Card, reports
from ._archive_tables import tables

__all__ = ["Card", "Row", "convert", "reports", "tables"]
