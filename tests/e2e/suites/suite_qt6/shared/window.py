"""A window made with the version of Qt that the first argument names. With a second argument its
button starts this program again, for that version."""

import importlib
import subprocess
import sys

version, *child = sys.argv[1:]
widgets = importlib.import_module("PyQt%s.QtWidgets" % version)


def clicked():
    button.setText("clicked")
    if child:
        subprocess.Popen([sys.executable, __file__, *child])


application = widgets.QApplication(sys.argv)
button = widgets.QPushButton("of Qt " + version)
button.clicked.connect(clicked)
button.show()
sys.exit(application.exec())
