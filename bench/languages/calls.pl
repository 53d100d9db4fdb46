use strict;
use warnings;
use List::Util ();

sub empty {
    my ($count) = @_;
    for (1 .. $count) { }
}

sub bare {
    my ($count) = @_;
    for (1 .. $count) { List::Util::max(1000, 2000) }
}

sub call {
    my ($count) = @_;
    for (1 .. $count) { nothing(1000, 2000) }
}

sub best {
    my ($loop, $count) = (@_, 20000);
    my @times;
    for (1 .. 50) {
        my $start = now();
        $loop->($count);
        push @times, now() - $start;
    }
    return List::Util::min(@times) / $count;
}

sub main {
    report("empty", best(\&empty));
    report("bare", best(\&bare));
    report("call", best(\&call));
}
