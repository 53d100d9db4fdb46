use strict;
use warnings;

sub empty {
    my ($count) = @_;
    for (1 .. $count) { }
}

sub call_nothing {
    my ($count) = @_;
    for (1 .. $count) { nothing() }
}

sub call_plus {
    my ($count) = @_;
    for (1 .. $count) { plus(1000, 2000) }
}

sub best {
    my ($loop, $count) = (@_, 20000);
    my $least;
    for (1 .. 50) {
        my $start = now();
        $loop->($count);
        my $time = now() - $start;
        $least = $time if !defined $least || $time < $least;
    }
    return $least / $count;
}

sub main {
    report("empty", best(\&empty));
    report("nothing", best(\&call_nothing));
    report("plus", best(\&call_plus));
}
