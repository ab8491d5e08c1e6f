"""openpyxl_peer.py FILE ROWS: writes and reads a table of the benchmark's shape; prints the seconds of both."""

import sys
import time

import openpyxl

path, rows = sys.argv[1], int(sys.argv[2])
table = [["资金账号", "交易所", "证券代码", "开仓日期", "委托编号", "偿还优先级", "偿还优先级设置"]]
table += [
    ["80001", "SH" if i % 2 else "深圳", "%06d" % (i % 999983), "20240105", str(1000000 + i), str(i % 100), str(i + 1)]
    for i in range(rows)
]

begin = time.perf_counter()
book = openpyxl.Workbook(write_only=True)
sheet = book.create_sheet("Sheet1")
for row in table:
    sheet.append(row)
book.save(path)
written = time.perf_counter()
count = sum(1 for row in openpyxl.load_workbook(path, read_only=True).active.iter_rows(values_only=True) if row[6])
read = time.perf_counter()
assert count == rows + 1
print(written - begin, read - written)
