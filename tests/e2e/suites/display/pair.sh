#!/bin/sh
# Two windows of two processes, one over the other.
/usr/bin/xterm -T first -geometry 40x10+100+100 -e cat &
sleep 0.5
/usr/bin/xterm -T second -geometry 40x10+120+120 -e cat &
wait
