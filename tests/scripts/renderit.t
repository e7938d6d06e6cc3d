#!/usr/bin/perl
# SPDX-License-Identifier: Apache-2.0
# Tests of the mray library's renderit.  MRAY_RENDER may name the directory of
# the built mray-render; without it only what needs no renderer is tested, with
# a stand-in that tells what it was asked to do.
use strict;
use warnings;
use Test::More;
use File::Temp qw(tempdir);
use FindBin;
use lib $FindBin::Bin;
use ScriptTest 'line_map';
use Time::HiRes qw(time);

my $root = "$FindBin::Bin/../..";
my $renderit = "$root/installation/mray/bin/renderit";
my $dir = tempdir(CLEANUP => 1);
my $work = "$dir/work dir";
mkdir $work or die;
my $real_path = defined $ENV{MRAY_RENDER} ? "$ENV{MRAY_RENDER}:$ENV{PATH}" : undef;

delete @ENV{grep { /^TAVRN_/ } keys %ENV};
$ENV{TAVRN_WORKDIR} = $work;

sub put {
    my ($path, $text) = @_;
    open(my $out, '>', $path) or die "$path: $!";
    print $out $text;
    close $out;
}

# A shader with the map of its lines, as codefilter leaves them.
sub put_mapped {
    my ($name, $text, $extension) = @_;
    put("$work/$name" . ($extension // ''), $text);
    put("$work/$name.linemap", line_map($text));
}

sub slurp {
    my ($path) = @_;
    open(my $in, '<:raw', $path) or return '';
    local $/;
    return <$in>;
}

sub options {
    my (%of) = @_;
    my $text = '';
    for my $key (sort keys %of) {
        (my $value = $of{$key}) =~ s/(["\\])/\\$1/g;
        $text .= "setenv $key \"$value\"\r\n";
    }
    put("$dir/opts", $text);
    $ENV{TAVRN_RENOPTS} = "$dir/opts";
}

# Runs renderit; returns its exit status and everything it printed.
sub renderit {
    my $text = '';
    my $pid = open(my $out, '-|') // die;
    if (!$pid) {
        open(STDERR, '>&', \*STDOUT);
        open(STDIN, '<', '/dev/null');
        exec $^X, $renderit, @_;
    }
    { local $/; $text = <$out>; }
    close $out;
    return ($? >> 8, defined $text ? $text : '');
}

# The colour of a pixel of a picture as the renderer writes it: RGB, each row filtered by
# differences across.
sub pixel {
    my ($picture, $x, $y) = @_;
    require Compress::Zlib;
    my $packed = '';
    for (my $at = 8; $at < length $picture;) {
        my ($length, $kind) = unpack 'N a4', substr $picture, $at;
        $packed .= substr $picture, $at + 8, $length if $kind eq 'IDAT';
        $at += 12 + $length;
    }
    my ($width) = unpack 'N', substr $picture, 16;
    my @row = unpack "x@{[$y * (3 * $width + 1)]} C@{[3 * $width + 1]}", Compress::Zlib::uncompress($packed);
    shift @row == 1 or die 'the filter of the row is another one';
    $row[$_] = ($row[$_] + $row[$_ - 3]) & 255 for 3 .. $#row;
    return join ',', @row[3 * $x .. 3 * $x + 2];
}

# A stand-in that acts on a command in the shader's first line.
mkdir "$dir/bin";
put("$dir/bin/mray-render", <<'END');
#!/usr/bin/perl
$| = 1;
my ($shader, $picture) = @ARGV[-2, -1];
open(my $in, '<', $shader) or die;
my $what = <$in>;
print "ARGS @{[map { s/^\Q$picture\E/PICTURE/r } @ARGV[0 .. $#ARGV - 2]]}\n";
if ($what =~ /reject/) { print STDERR "$shader:9: error: no good\n$shader: more\nother\n"; exit 1 }
if ($what =~ /early/)  { print STDERR "$shader:3: error: no good\n"; exit 1 }
if ($what =~ /stop/)   { exit 3 }
if ($what =~ /crash/)  { kill 'SEGV', $$; sleep 1 }
if ($what =~ /nothing/) { exit 0 }
if ($what =~ /empty/)  { open(my $e, '>', $picture); exit 0 }
if ($what =~ /hang/)   { open(my $k, '>', $ENV{TAVRN_KILLFILE}); close $k; sleep 20 }
open(my $out, '>', $picture); print $out 'picture'; close $out;
END
chmod 0755, "$dir/bin/mray-render";
my $plain_path = $ENV{PATH};
$ENV{PATH} = "$dir/bin:$plain_path";

$ENV{MRAY_VIEWER} = '';

subtest 'a render with defaults' => sub {
    put("$work/Ball", "fine\n");
    my ($status, $text) = renderit('Ball', 3);
    is($status, 0, 'status');
    like($text, qr/\Arendering Ball \(render 3, 320x240, sphere\)\n/, 'first line');
    like($text, qr/^wrote \Q$work\E\/3\/Ball\.png\n\z/m, 'last line');
    like($text, qr/--background studio --exposure 1 --light key --object sphere --samples 4 --size 320,240/, 'defaults');
    is(slurp("$work/3/Ball.frag"), "fine\n", 'the shader is copied');
    ok(-e "$work/3/Ball.png", 'the picture is there');
};

subtest 'render options' => sub {
    options(MRAY_SIZE => '64,48', MRAY_OBJECT => 'torus', MRAY_LIGHT => 'sun', MRAY_EXPOSURE => '1.5',
            MRAY_BACKGROUND => 'dark', MRAY_SAMPLES => '9', OTHER => 'a "quoted\\" thing');
    my ($status, $text) = renderit('Ball', 4);
    is($status, 0, 'status');
    like($text, qr/\Arendering Ball \(render 4, 64x48, torus\)/, 'first line');
    like($text, qr/--background dark --exposure 1\.5 --light sun --object torus --samples 9 --size 64,48/, 'all passed on');
};

subtest 'bad options' => sub {
    my @bad = ([MRAY_SIZE => '0,10'], [MRAY_SIZE => 'big'], [MRAY_SIZE => '8192,8192'], [MRAY_SAMPLES => '5'],
               [MRAY_OBJECT => 'te"apot'], [MRAY_BACKGROUND => ''], [MRAY_LIGHT => 'moon'], [MRAY_EXPOSURE => '-1'],
               [MRAY_EXPOSURE => '0'], [MRAY_VIEW => 'wire'], [MRAY_TINT_R => '-1'], [MRAY_TINT_G => 'red'],
               [MRAY_TINT_B => '1001'], [MRAY_TINT_B => ''], [MRAY_SHOW => 'yes'], [MRAY_TIMES => ''],
               [MRAY_REFERENCE => 'photo.png']);
    for my $case (@bad) {
        my ($key, $value) = @$case;
        options($key => $value);
        my ($status, $text) = renderit('Ball', 5);
        is($status, 2, "$key '$value' is refused");
        like($text, qr/^renderit: $key in \Q$dir\E\/opts is "\Q$value\E"; it must be /m, 'and explained');
    }
    $ENV{TAVRN_RENOPTS} = "$dir/none";
    my ($status, $text) = renderit('Ball', 5);
    isnt($status, 0, 'missing option file');
    like($text, qr/cannot read the render options/, 'is told');
    delete $ENV{TAVRN_RENOPTS};
};

subtest 'what concerns the shader alone is done to its copy' => sub {
    my $text = "// the old\n// void main() was longer\nvoid main()\n{\n    tvColor = vec4(1.0);\n}\n";
    put("$work/Ball", $text);
    options(MRAY_VIEW => 'shaded', MRAY_TINT_R => '1.0', MRAY_TINT_G => '1', MRAY_TINT_B => '1.00');
    renderit('Ball', 5);
    is(slurp("$work/5/Ball.frag"), $text, 'which is the shader where nothing is asked for');
    options(MRAY_VIEW => 'alpha', MRAY_TINT_G => '.5', MRAY_TINT_B => '0');
    my ($status, $said) = renderit('Ball', 5);
    is($status, 0, 'status');
    like($said, qr/\Arendering Ball \(render 5, 320x240, sphere, alpha\)\n/, 'the view is told');
    unlike($said, qr/^ARGS.*(?:view|tint|show|times|reference)/mi, 'the renderer does not know');
    my $copy = slurp("$work/5/Ball.frag");
    my @lines = split /\n/, $copy;
    is($lines[1], '// void main() was longer', 'a comment stays');
    is($lines[2], 'void mrShade()', 'the main has another name in its line');
    my $last = "tvColor = vec4(vec3(tvColor.a), 1.0);\n    tvColor.rgb *= vec3(1.000000, 0.500000, 0.000000);";
    like($copy, qr/^void main\(\)\n\{\n    mrShade\(\);\n    \Q$last\E\n\}\n\z/m, 'and another main calls it');
    is(slurp("$work/Ball"), $text, 'the shader is as it was');
    put("$work/Ball", "fine\n");
    renderit('Ball', 5);
    is(slurp("$work/5/Ball.frag"), "fine\n", 'text without a main stays as it is');
    put_mapped('Ball', "// reject\n\n\n\n\nvoid main()\n{\n    // Noise_3\n    oops;\n}\n");
    like((renderit('Ball', 5))[1], qr/^Ball: line 9 \(box Noise_3, operator Noise, \S+ line 1\): error: no good$/m, 'messages still name the box');
    unlink "$work/Ball.linemap";
    delete $ENV{TAVRN_RENOPTS};
};

subtest 'times' => sub {
    put("$work/Ball", "fine\n");
    options(MRAY_TIMES => '0');
    unlike((renderit('Ball', 5))[1], qr/--timing/, 'are not told');
    options(MRAY_TIMES => '1');
    like((renderit('Ball', 5))[1], qr/^ARGS .*--timing/m, 'but where they are asked for');
    delete $ENV{TAVRN_RENOPTS};
};

subtest 'bad calls' => sub {
    for my $call ([], ['Ball'], ['a/b', 1], ['Ball', 'x'], ['..', 1]) {
        my ($status, $text) = renderit(@$call);
        is($status, 2, "refused: @$call");
        like($text, qr/usage: renderit/, 'usage');
    }
    my ($status, $text) = renderit('Nothing', 1);
    is($status, 1, 'no shader');
    like($text, qr/cannot read the shader/, 'is told');
};

subtest 'messages name the box' => sub {
    my $shader = "%s\nfloat f()\n{\n}\nvoid main()\n{\n    // Noise_3\n    float a;\n    a = oops;\n    // Wood_4\n}\n";
    put_mapped('Bad', sprintf $shader, '// reject');
    my ($status, $text) = renderit('Bad', 6);
    is($status, 1, 'status');
    like($text, qr{^Bad: line 9 \(box Noise_3, operator Noise, /operators/Noise line 2\): error: no good$}m, 'inside a box');
    like($text, qr/^Bad: more$/m, 'no line');
    like($text, qr/^other$/m, 'other messages stay');
    unlike($text, qr/^wrote/m, 'nothing written');
    put_mapped('Bad', sprintf $shader, '// early');
    (undef, $text) = renderit('Bad', 6);
    like($text, qr/^Bad: line 3: error: no good$/m, 'outside of all boxes');
    put("$work/Bad", sprintf($shader, '// reject') . "\n");
    (undef, $text) = renderit('Bad', 6);
    like($text, qr/^Bad: warning: \S.*Bad\.linemap: it is of a source of 11 lines, and this one has 12, so boxes cannot be named$/m,
        'a map of another shader is told');
    like($text, qr/^Bad: line 9: error: no good$/m, 'and names none');
    unlink "$work/Bad.linemap";
    (undef, $text) = renderit('Bad', 6);
    like($text, qr/^Bad: line 9: error: no good$/m, 'neither does none');
    unlike($text, qr/linemap/, 'which is nothing to tell');
};

subtest 'a shader that is only a part' => sub {
    put("$work/Part", "a part\n");
    put("$work/Part.frag", "whole\n");
    is((renderit('Part', 6))[0], 0, 'status');
    is(slurp("$work/6/Part.frag"), "whole\n", 'the whole shader is rendered');
    put_mapped('Part', "// reject\nvec4 f()\n{\n}\n// Not_1\nvec4 Part(float a)\n{\n    // Noise_3\n    b = oops;\n}\n", '.frag');
    my ($status, $text) = renderit('Part', 6);
    is($status, 1, 'a fault');
    like($text, qr{^Part: line 9 \(box Noise_3, operator Noise, /operators/Noise line 1\): error: no good$}m, 'names the box of the part');
    put_mapped('Part', "// reject\nvec4 f()\n{\n    // Noise_3\n}\n\n\n\n\n\n", '.frag');
    (undef, $text) = renderit('Part', 6);
    like($text, qr/^Part: line 9: error: no good$/m, 'but not behind it');
    unlink "$work/Part";
    like((renderit('Part', 6))[1], qr/cannot read the shader \Q$work\E\/Part:/, 'a whole one alone is none');
};

subtest 'a failed render leaves no older picture' => sub {
    put("$work/Ball", "fine\n");
    renderit('Ball', 7);
    ok(-e "$work/7/Ball.png", 'first');
    put("$work/Ball", "crash\n");
    my ($status, $text) = renderit('Ball', 7);
    is($status, 1, 'status');
    like($text, qr/mray-render broke down \(signal 11\)/, 'is told');
    ok(!-e "$work/7/Ball.png", 'gone');
};

subtest 'a renderer that leaves no picture has failed' => sub {
    for my $case ([nothing => 'not there'], [empty => 'empty']) {
        my ($what, $told) = @$case;
        put("$work/Ball", "fine\n");
        renderit('Ball', 13);
        put("$work/Ball", "$what\n");
        my ($status, $text) = renderit('Ball', 13);
        is($status, 1, "$what: status");
        like($text, qr{^renderit: mray-render ended without an error, but left no picture: \Q$work\E/13/Ball\.png is $told$}m,
            'the file is named');
        unlike($text, qr/^wrote/m, 'and nothing else');
    }
};

subtest 'what is told is where the picture stays' => sub {
    put("$work/Ball", "fine\n");
    delete local @ENV{qw(DISPLAY WAYLAND_DISPLAY)};
    local $ENV{TAVRN_KILLFILE} = "$dir/kill";
    my ($status, $text) = renderit('Ball', 14);
    like($text, qr{\nwrote \Q$work\E/14/Ball\.png \(there until the program ends\)\n\z}, 'as long as the program runs');
    {
        local $ENV{TAVRN_KEEPWORK} = '';
        ($status, $text) = renderit('Ball', 14);
        is($status, 0, 'status');
        like($text, qr{\nrendered Ball; its picture is not kept: --picture FILE keeps it\n\z}, 'nowhere');
        unlike($text, qr{\Q$work\E}, 'so no file is named');
        local $ENV{TAVRN_KEEPWORK} = 'kept here';
        ($status, $text) = renderit('Ball', 14);
        like($text, qr{\nwrote kept here/14/Ball\.png\n\z}, 'in the copy of the work directory');
    }
    for my $kept (undef, '', 'kept here') {
        local $ENV{TAVRN_KEEPWORK} = $kept;
        delete $ENV{TAVRN_KEEPWORK} if !defined $kept;
        local $ENV{TAVRN_PICTURE} = "$dir/a \"b\".png";
        put($ENV{TAVRN_PICTURE}, 'older');
        ($status, $text) = renderit('Ball', 14);
        is($status, 0, 'status');
        like($text, qr{\nwrote \Q$dir\E/a "b"\.png\n\z}, 'in the file that is asked for');
        is(slurp($ENV{TAVRN_PICTURE}), 'picture', 'which has it');
        is(slurp("$work/14/Ball.png"), 'picture', 'beside the one of the history');
    }
    {
        mkdir "$dir/elsewhere";
        put("$dir/elsewhere/real.png", 'older');
        symlink "$dir/elsewhere/real.png", "$dir/link.png";
        local $ENV{TAVRN_PICTURE} = "$dir/link.png";
        is((renderit('Ball', 14))[0], 0, 'a link');
        ok(-l "$dir/link.png", 'stays one');
        is(slurp("$dir/elsewhere/real.png"), 'picture', 'and its file has the picture');
        local $ENV{TAVRN_PICTURE} = '/dev/null';
        is((renderit('Ball', 14))[0], 0, 'a device');
        ok(!-f '/dev/null', 'stays one, too');
        local $ENV{TAVRN_PICTURE} = "$dir/none/x.png";
        ($status, $text) = renderit('Ball', 14);
        is($status, 1, 'a place that is not there');
        like($text, qr{^renderit: cannot write \Q$dir\E/none/x\.png: No such file}m, 'is told');
    }
    is(join(' ', glob "$dir/*.new $dir/elsewhere/*.new"), '', 'nothing is left over');
};

subtest 'stopping' => sub {
    $ENV{TAVRN_KILLFILE} = "$dir/kill";
    put("$work/Ball", "stop\n");
    my ($status, $text) = renderit('Ball', 8);
    is($status, 3, 'status');
    like($text, qr/^render 8 stopped$/m, 'is told');
    put("$work/Ball", "hang\n");
    my $start = time;
    ($status, $text) = renderit('Ball', 8);
    is($status, 3, 'a renderer that does not listen');
    like($text, qr/^render 8 stopped$/m, 'is ended');
    cmp_ok(time - $start, '<', 5, 'in time');
    unlink "$dir/kill";
    delete $ENV{TAVRN_KILLFILE};
};

subtest 'the picture is opened where there is a display' => sub {
    put("$dir/bin/look", "#!/usr/bin/perl\nopen(my \$f, '>', '$dir/seen'); print \$f \"\@ARGV\"; close \$f;\n"
            . "select undef, undef, undef, 0.02 until -e '$dir/looked' || !-d '$dir';\n");
    chmod 0755, "$dir/bin/look";
    put("$work/Ball", "fine\n");
    local $ENV{MRAY_VIEWER} = "$dir/bin/look --fast";
    {
        local $ENV{DISPLAY} = '';
        local $ENV{WAYLAND_DISPLAY};
        renderit('Ball', 10);
        ok(!-e "$dir/seen", 'not without one');
    }
    local $ENV{DISPLAY} = ':0';
    {
        local $ENV{MRAY_VIEWER} = '';
        renderit('Ball', 10);
        ok(!-e "$dir/seen", 'not without a viewer');
    }
    # The viewer is still looking when this returns: it does not hold the output open.
    my ($status, $text) = renderit('Ball', 10);
    is($status, 0, 'status');
    for (1 .. 500) { last if -s "$dir/seen"; select undef, undef, undef, 0.02; }
    is(slurp("$dir/seen"), "--fast $work/10/Ball.png", 'the viewer has it');
    put("$dir/looked", '');
    local $ENV{MRAY_VIEWER} = "$dir/bin/missing";
    ($status, $text) = renderit('Ball', 10);
    is($status, 0, 'a viewer that is not there is no failure');
    like($text, qr/^WARNING: there is no program \Q$dir\E\/bin\/missing to show .* set MRAY_VIEWER /m, 'but is told');
    local $ENV{MRAY_VIEWER} = 'no-such-viewer';
    ($status, $text) = renderit('Ball', 10);
    like($text, qr/^WARNING: there is no program no-such-viewer to show/m, 'nor is one found by its name');
};

subtest 'a picture to compare with is opened, too' => sub {
    put("$dir/bin/note", "#!/usr/bin/perl\n"
            . "open(my \$f, '>>', '$dir/noted'); print \$f \"\$ARGV[0]\\n\"; close \$f;\n");
    chmod 0755, "$dir/bin/note";
    local $ENV{MRAY_VIEWER} = "$dir/bin/note";
    local $ENV{DISPLAY} = ':0';
    put("$work/Ball", "fine\n");
    # What the viewers that a render starts have seen by the time that $count have.
    my $noted = sub {
        my ($count, %of) = @_;
        unlink "$dir/noted";
        options(%of);
        my ($status, $text) = renderit('Ball', 15);
        is($status, 0, 'status');
        for (1 .. 3000) {
            last if (() = slurp("$dir/noted") =~ /\n/g) >= $count;
            select undef, undef, undef, 0.02;
        }
        return (join(' ', sort split /\n/, slurp("$dir/noted")), $text);
    };
    put("$dir/photo", "\xff\xd8\xff\xe0 and so on");
    is(($noted->(2, MRAY_REFERENCE => "$dir/photo"))[0], join(' ', sort "$dir/photo", "$work/15/Ball.png"), 'both');
    is(($noted->(1, MRAY_SHOW => '1'))[0], "$work/15/Ball.png", 'one where none is named');

    put("$dir/run.desktop", "[Desktop Entry]\nExec=rm\n");
    put("$dir/page.html", "GIF89a<script>alert(1)</script>\n");
    for my $case (["$dir/none.png", 'no such file or directory'], ["$dir/run.desktop", 'it is no picture'],
                  ["$dir/page.html", 'its name is not that of a picture'],
                  [$dir, 'it is no file']) {
        my ($file, $why) = @$case;
        my ($seen, $text) = $noted->(1, MRAY_REFERENCE => $file);
        is($seen, "$work/15/Ball.png", "$why: the finished one is opened alone");
        like($text, qr/^WARNING: cannot show the reference \Q$file\E: \Q$why\E; choose another one in the render /m,
            'and the reason told');
    }
    require POSIX;
    POSIX::mkfifo("$dir/pipe", 0600) or die;
    like(($noted->(1, MRAY_REFERENCE => "$dir/pipe"))[1], qr{/pipe: it is no file;}, 'nobody waits for a pipe');

    unlink "$dir/noted";
    local $ENV{MRAY_VIEWER} = "$dir/bin/missing";
    options(MRAY_SHOW => '0', MRAY_REFERENCE => "$dir/none.png");
    unlike((renderit('Ball', 15))[1], qr/WARNING/, 'nothing is opened where the picture is not to be shown');
    delete $ENV{TAVRN_RENOPTS};
};

subtest 'where there is a picture window, it has the picture from its first row on' => sub {
    # Notes what it is told, and what is there of the picture then.
    put("$dir/bin/window", <<"END");
#!/usr/bin/perl
my \$there = join '+', map { -e "\$ARGV[3]\$_" ? "file\$_" : () } '', '.part';
open(my \$f, '>>', '$dir/told');
print \$f join('|', map({ s{^\Q$dir\E/}{}r } \@ARGV), "in \$ENV{TAVRN_WORKDIR}"), " \$there\\n";
close \$f;
END
    chmod 0755, "$dir/bin/window";
    local $ENV{TAVRN_VIEW} = "$dir/bin/window";
    local $ENV{DISPLAY} = ':0';
    local $ENV{MRAY_VIEWER};
    delete $ENV{MRAY_VIEWER};
    put("$work/Ball", "fine\n");
    # What the window was told by the time that it was told so much.
    my $told = sub {
        my ($count, $number, %of) = @_;
        unlink "$dir/told";
        options(%of);
        my ($status, $text) = renderit('Ball', $number);
        for (1 .. 3000) {
            last if (() = slurp("$dir/told") =~ /\n/g) >= $count;
            select undef, undef, undef, 0.02;
        }
        return (slurp("$dir/told"), $status, $text);
    };
    my ($seen, $status, $text) = $told->(2, 16);
    is($status, 0, 'status');
    my @lines = split /\n/, $seen;
    like($lines[0], qr{^--hand\|16\|Ball\|work dir/16/Ball\.png\|--growing\|in \Q$work\E }, 'at the start as one that grows');
    is($lines[1], "--hand|16|Ball|work dir/16/Ball.png|in $work file", 'then as a whole one');
    like($text, qr{^wrote \Q$work\E/16/Ball\.png\n\z}m, 'which counts as shown');

    put("$work/Ball", "reject\n");
    ($seen, $status) = $told->(1, 16);
    is($status, 1, 'a render that fails');
    unlike($seen, qr/Ball\.png\|in /, 'is not handed over as a whole one');
    put("$work/Ball", "fine\n");

    put("$dir/a photo.jpg", "\xff\xd8\xff\xe0 and so on");
    ($seen) = $told->(3, 17, MRAY_REFERENCE => "$dir/a photo.jpg");
    like($seen, qr/^--hand\|0\|a photo\.jpg\|a photo\.jpg\|in /m, 'what it is to be compared with has number 0');
    ($seen, undef, $text) = $told->(2, 17, MRAY_REFERENCE => "$dir/none.png");
    unlike($seen, qr/none/, 'unless it is none');
    like($text, qr/^WARNING: cannot show the reference \Q$dir\E\/none\.png: no such file/m, 'which is told');

    unlink "$dir/told";
    options(MRAY_SHOW => '0');
    renderit('Ball', 17);
    options();
    {
        local $ENV{DISPLAY} = '';
        renderit('Ball', 17);
    }
    {
        local $ENV{MRAY_VIEWER} = '';
        renderit('Ball', 17);
    }
    put("$dir/bin/look", "#!/usr/bin/perl\nopen(my \$f, '>', '$dir/seen'); print \$f \"\@ARGV\"; close \$f;\n");
    chmod 0755, "$dir/bin/look";
    unlink "$dir/seen";
    {
        local $ENV{MRAY_VIEWER} = "$dir/bin/look";
        renderit('Ball', 18);
        for (1 .. 3000) { last if -s "$dir/seen"; select undef, undef, undef, 0.02; }
        is(slurp("$dir/seen"), "$work/18/Ball.png", 'a viewer that is named comes first');
    }
    ok(!-e "$dir/told", 'and the window is told nothing: not where nothing is to be shown, and without a display');

    rename "$dir/bin/look", "$dir/bin/xdg-open";
    for my $none ('', "$dir/bin/missing") {
        unlink "$dir/seen";
        local $ENV{TAVRN_VIEW} = $none;
        renderit('Ball', 19);
        for (1 .. 3000) { last if -s "$dir/seen"; select undef, undef, undef, 0.02; }
        is(slurp("$dir/seen"), "$work/19/Ball.png", "without a window ('$none') the desktop's viewer has it");
    }
    unlink "$dir/bin/xdg-open";
    delete $ENV{TAVRN_RENOPTS};
};

subtest 'the picture grows under a name of its own' => sub {
    put("$work/Ball", "fine\n");
    put("$work/16/Ball.png.part", 'left over');
    my ($status, $text) = renderit('Ball', 16);
    like($text, qr{^ARGS .*--part PICTURE\.part --$}m, 'which the renderer is told');
    ok(!-e "$work/16/Ball.png.part", 'and at which nothing lies');
};

subtest 'no renderer' => sub {
    local $ENV{PATH} = "$dir/nothing";
    put("$work/Ball", "fine\n");
    my ($status, $text) = renderit('Ball', 9);
    is($status, 1, 'status');
    like($text, qr/cannot start mray-render/, 'is told');
};

subtest 'the real renderer' => sub {
    plan skip_all => 'MRAY_RENDER is not set' if !defined $real_path;
    local $ENV{PATH} = $real_path;
    my $prelude = slurp("$root/installation/mray/glsl/surface.glsl");
    options(MRAY_SIZE => '40x30');
    my $body = "void main()\n{\n    // Plain_1\n    vec3 n = normalize(tvNormal);\n"
        . "    tvColor = vec4(tvLambert(n, tvPosition)%s, 1.0);\n}\n";
    put("$work/Real", "#version 330 core\n$prelude" . sprintf $body, '');
    my ($status, $text) = renderit('Real', 10);
    is($status, 0, 'status') or diag $text;
    my $picture = slurp("$work/10/Real.png");
    is(substr($picture, 1, 3), 'PNG', 'a picture');
    is(join(',', unpack 'N2', substr $picture, 16, 8), '40,30', 'of the right size');
    my %alpha;
    for my $alpha (qw(0.5 1.0)) {
        for my $light (qw(key rim)) {
            options(MRAY_SIZE => '40x30', MRAY_BACKGROUND => 'dark', MRAY_VIEW => 'alpha', MRAY_LIGHT => $light);
            put("$work/Real", "#version 330 core\n$prelude" . sprintf($body, '') =~ s/1\.0\);/$alpha);/r);
            is((renderit('Real', 10))[0], 0, 'status');
            my ($middle) = pixel(slurp("$work/10/Real.png"), 20, 15);
            $alpha{$alpha}{$light} = $middle;
        }
    }
    is($alpha{'0.5'}{key}, $alpha{'0.5'}{rim}, 'the view of alpha does not show the light');
    isnt($alpha{'0.5'}{key}, $alpha{'1.0'}{key}, 'but what covers the background');
    options(MRAY_SIZE => '40x30');
    put_mapped('Real', "#version 330 core\n$prelude" . sprintf $body, ' * oops');
    ($status, $text) = renderit('Real', 11);
    is($status, 1, 'a bad shader');
    like($text, qr/^Real: line \d+ \(box Plain_1, operator Plain, .* line \d+\): .*oops/m, 'names the box');
    $ENV{TAVRN_KILLFILE} = "$dir/opts";
    put("$work/Real", "#version 330 core\n$prelude" . sprintf $body, '');
    ($status, $text) = renderit('Real', 12);
    is($status, 3, 'stopped');
    ok(!-e "$work/12/Real.png", 'no picture');
    is_deeply([glob "'$work/12/*.part*'"], [], 'nothing left over');
};

done_testing;
