#!/usr/bin/perl
# SPDX-License-Identifier: Apache-2.0
# Live pictures of mray: perl bench/live.pl TAVRIN-BATCH. Medians in milliseconds, from the line that tells the
# script of a state to the line that tells of a picture: the first one, whichever that is, and the fine one; then the
# worst of ten, and the shares of the work as the script and the renderer measure them.
#   value     another value of the marble example at 320x240, 200 times
#   network   another network, 60 times: no source comes twice
#   drag      values again, each sent once the first picture of the one before is there: pictures a second
# and under "floor" the same for a shader that does nothing. The driver's cache of compiled shaders is off: with it
# a network would be new only once.
use strict;
use warnings;
use Cwd qw(abs_path);
use File::Basename qw(dirname);
use File::Path qw(remove_tree);
use File::Temp qw(tempdir);
use Time::HiRes qw(time);

my $batch = abs_path($ARGV[0] // '') or die "usage: live.pl TAVRIN-BATCH\n";
my $source = abs_path(dirname(__FILE__) . '/..');
my $work = tempdir(CLEANUP => 1);
my ($values, $networks) = (200, 60);
delete @ENV{ grep { /^TAVRN_|^MRAY_/ } keys %ENV };
$ENV{MESA_SHADER_CACHE_DISABLE} = 'true';
$ENV{PATH} = dirname($batch) . "/../libexec/tavrin:$ENV{PATH}";

sub get {
    open my $in, '<:raw', $_[0] or die "$_[0]: $!\n";
    local $/;
    return <$in>;
}

sub put {
    open my $out, '>:raw', $_[0] or die "$_[0]: $!\n";
    print $out $_[1];
    close $out;
}

system($batch, '--quiet', '--set', 'MRAY_SIZE=320,240', '--set', 'MRAY_SAMPLES=4', '--set', 'MRAY_TIMES=1', '--save-shader',
    '--keep-work', "$work/kept", "$source/examples/marble.tvn") == 0 or die "the marble example makes no shader\n";
my $options = get("$work/kept/render_options");
my $marble = get("$work/kept/codegenfile");
my $trivial = "Help\n{\n}\nEndArginfo\n#version 330 core\n//\@prelude surface\n//\@arguments\nvoid main()\n{\n"
    . "    \n    // Plain_1\n    tvColor = vec4(0.550000, 0.220000, 1.0, 1.0);\n}\n";

pipe my $asked, my $to or die;
pipe my $from, my $said or die;
my $child = fork // die;
if (!$child) {
    open STDIN, '<&', $asked;
    open STDOUT, '>&', $said;
    exec $^X, "$source/installation/mray/bin/live" or die;
}
close $_ for $asked, $said;

# Another state: the source with one of its values or its statements changed.
my $count = 0;
sub state_of {
    my ($code, $is_network) = @_;
    my $dir = "$work/" . ++$count;
    mkdir $dir or die;
    my $value = sprintf '%f', 0.2 + 0.0005 * ($count % 400);
    $code =~ s/\b0\.220000\b/$value/ or die "the source has not the value that is to change\n";
    $code =~ s/^\}\s*\z/    tvColor.r += 0.0001 * float($count);\n}\n/m if $is_network;
    put("$dir/codegenfile", $code);
    put("$dir/hintfile", '');
    put("$dir/render_options", $options);
    put("$dir/name", "marble\n");
    return $dir;
}

sub send_state { syswrite $to, "$_[0]\n" }

# The times of one state up to its first and its last picture, and its shares.
sub measure {
    my ($dir) = @_;
    my $begin = time;
    send_state($dir);
    my ($first, %shares);
    while (my $line = <$from>) {
        my $now = (time - $begin) * 1000;
        $first //= $now if $line =~ /^(?:coarse|picture)/;
        if ($line =~ /^note .* times: (.*) ms, program (\w+)/) {
            $shares{program} = $2;
            /^(.*) ([\d.]+)$/ and $shares{$1} = $2 for split /, /, $1;
        }
        next if $line =~ /^(?:coarse|note)/;
        $line =~ /^picture/ or die $line;
        remove_tree($dir);
        return ($first, $now, \%shares);
    }
    die "the script has ended\n";
}

sub at { my ($share, @times) = @_; return (sort { $a <=> $b } @times)[$share * $#times] }

sub report {
    my ($what, $code, $count, $is_network) = @_;
    my (@first, @fine, %shares);
    for (1 .. $count) {
        my ($first, $fine, $shares) = measure(state_of($code, $is_network));
        my $program = delete $shares->{program};
        die "$what: the program is $program\n" if $program ne ($is_network ? 'new' : 'kept');
        push @first, $first;
        push @fine, $fine;
        push @{ $shares{$_} }, $shares->{$_} for keys %$shares;
    }
    printf "%-14s first %6.1f  fine %6.1f  worst of ten %6.1f %6.1f   of it %s\n", $what, at(0.5, @first), at(0.5, @fine),
        at(0.9, @first), at(0.9, @fine),
        join ', ', map { sprintf '%s %.1f', $_, at(0.5, @{ $shares{$_} }) } grep { at(0.5, @{ $shares{$_} }) >= 0.05 } sort keys %shares;
}

# A value that is dragged: the next one once the first picture of this one is there.
sub drag {
    my ($code) = @_;
    my $begin = time;
    my ($seen, $sent) = (0, 1);
    send_state(state_of($code));
    my $heard = '';    # of the state that is answered now
    my @answered;
    while (@answered < $values) {
        my $line = <$from> // die "the script has ended\n";
        if ($line =~ /^(?:coarse|picture) (.*)\/\w+\.png$/ && $heard ne $1) {
            $heard = $1;
            $seen++;
            send_state(state_of($code)) if $sent++ < $values;
        }
        push @answered, $line if $line =~ /^(?:picture|dropped)/;
        die $line if $line =~ /^error/;
    }
    return $seen / (time - $begin);
}

for my $case (['', $marble], ['floor ', $trivial]) {
    my ($name, $code) = @$case;
    measure(state_of($code)) for 1 .. 3;
    report("${name}value", $code, $values, 0);
    report("${name}network", $code, $networks, 1);
    measure(state_of($code)) for 1 .. 3;
    printf "%-14s %.1f pictures a second\n", "${name}drag", drag($code);
}
close $to;
waitpid $child, 0;
