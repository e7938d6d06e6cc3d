# SPDX-License-Identifier: Apache-2.0
# guiprefilter: the shader interface that is made of the arguments.
use strict;
use warnings;
use File::Temp 'tempdir';
use FindBin;
use lib $FindBin::Bin;
use ScriptTest qw(put get);
use Test::More;

my $bin = "$FindBin::Bin/../../installation/mray/bin";
my $dir = tempdir(CLEANUP => 1);
delete @ENV{grep { /^TAVRN_/ } keys %ENV};

sub arg {
	my ($name, $type, $value, %more) = @_;
	return "ArgName $name\n{\n"
		. join('', map { sprintf "    %-11s %s\n", @$_ } ['Stow', $more{stow} // 0], ['Lock', $more{lock} // 0],
			['Pin', $more{pin} // 0], ['BoxTitle', $more{box} // 'Noise'], ['ButtonTitle', $more{button} // 'scale'],
			['Comments', $more{comment} // ''], [$type, $value], $more{range} ? ['MinMax', $more{range}] : ())
		. "}\n\n";
}

sub section {
	my ($help, @args) = @_;
	return "Help\n{\n" . join('', map { ">$_\n" } @$help) . "}\n\n" . join('', @args) . "EndArginfo\n";
}

my ($status, $err);
sub run {
	my ($input, @words) = @_;
	my $in = defined $input ? put("$dir/arginfo", $input) : "$dir/arginfo";
	my $pid = fork // die;
	if (!$pid) {
		open STDERR, '>', "$dir/real.err" or die;
		exec $^X, "$bin/redirect.pl", $in, '-', "$dir/err", "$bin/guiprefilter", @words;
	}
	waitpid $pid, 0;
	$status = $? & 127 ? 'signal' : $? >> 8;
	$err = get("$dir/err");
	return $status;
}

sub choose {
	my ($type) = @_;
	$ENV{TAVRN_RENOPTS} = put("$dir/options", "setenv TAVRN_SHADER_TYPE \"$type\"\r\n");
}

# ---- all of it

is(run(section(['A B R I C K', '', '    rowCount - rows of it', '}', 'end'],
	arg('rowCount', 'float', '18.000000', box => 'Brick', button => 'rows', range => '1.000000 90.500000', pin => 1),
	arg('tint', 'rgb', 'vec3(0.5, 0.25, 1.0)', box => 'Mix', button => 'upper', comment => 'a "deep" tint \\', lock => 1),
	arg('SHIFT', 'float', '0.500000', box => 'Brick', button => 'shift', range => '0 1', stow => 1, comment => 'how far'),
	arg('rowCount', 'float', '3.0', box => 'Checker', button => 'rows'),
	arg('base_place2', 'xyz', 'vec3(0, 1, 0)', box => 'Clear Coat', button => 'layer2', range => '-10.0 10.0'),
	arg('turn', 'generic', 'mat2(1.0)', box => 'Mix', button => 'turn')), 'demo', "$dir/out.sif"), 0, 'an interface');
is($err, '', 'without a word');
is(get("$dir/out.sif"), <<'END_INTERFACE', 'has all that is told about the arguments');
# The arguments of the shader demo.

interface 1
shader "demo"
type surface
function "main"

help {
    >A B R I C K
    >
    >    rowCount - rows of it
    >}
    >end
}

group "Brick" {
    parameter rowCount {
        label   "Row count"
        type    float
        glsl    float
        default 18
        range   1 90.5
        help    "rows of it"
        pin     1
        lock    0
        stow    0
        box     "Brick"
        button  "rows"
    }

    parameter SHIFT {
        label   "SHIFT"
        type    float
        glsl    float
        default 0.5
        range   0 1
        help    "how far"
        pin     0
        lock    0
        stow    1
        box     "Brick"
        button  "shift"
    }
}

group "Mix" {
    parameter tint {
        label   "Tint"
        type    rgb
        glsl    vec3
        default 0.5 0.25 1
        help    "a \"deep\" tint"
        pin     0
        lock    1
        stow    0
        box     "Mix"
        button  "upper"
    }

    parameter turn {
        label   "Turn"
        type    generic
        glsl    mat2
        default "mat2(1.0)"
        pin     0
        lock    0
        stow    0
        box     "Mix"
        button  "turn"
    }
}

group "Clear Coat" {
    parameter base_place2 {
        label   "Base place2"
        type    xyz
        glsl    vec3
        default 0 1 0
        range   -10 10
        pin     0
        lock    0
        stow    0
        box     "Clear Coat"
        button  "layer2"
    }
}
END_INTERFACE
is_deeply([glob "$dir/out.sif.*"], [], 'and leaves nothing beside it');

choose('module');
is(run(section([], arg('Ks', 'float', '0.5')) =~ s/\n/\r\n/gr, 'my-demo', "$dir/out.sif"), 0, 'a module, with CR LF');
like(get("$dir/out.sif"), qr{^type module\nfunction "my_demo"$}m, 'tells its function');
unlike(get("$dir/out.sif"), qr{\r}, 'and line feeds alone');
choose('surface');
is(run(section([]), 'demo', "$dir/out.sif"), 0, 'a shader without arguments');
like(get("$dir/out.sif"), qr{^help \{\n\}\n\z}m, 'has an empty help text and no groups');

# ---- failures

put("$dir/out.sif", 'older');
choose('volume');
is(run(section([]), 'demo', "$dir/out.sif"), 1, 'a type that there is not');
like($err, qr{^guiprefilter: demo: there is no shader type 'volume'}, 'is told');
choose('surface');
is(run("Help\n{\n", 'demo', "$dir/out.sif"), 1, 'a section that ends early');
like($err, qr{^guiprefilter: demo: the arginfo section ends early, in line 2}, 'is told with its line');
is(run(section([]) =~ s/Help/Halp/r, 'demo', "$dir/out.sif"), 1, 'a damaged section');
like($err, qr{damaged in line 1}, 'is told with its line');
is(get("$dir/out.sif"), 'older', 'and the older interface stays');
is(run(section([]), 'demo', "$dir/none/out.sif"), 1, 'a place that is not there');
like($err, qr{\Q$dir\E/none/out\.sif: No such file}, 'is told');
is(run(section([]), 'demo'), 2, 'a missing word');
like($err, qr{^usage:}, 'tells the usage');

done_testing;
