#!/bin/sh
/usr/bin/xterm -T survivor -e cat
sleep 60
